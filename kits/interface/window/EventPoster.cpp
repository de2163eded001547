#include "kits/interface/window/EventPoster.h"

#include <cmath>
#include <map>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/window/KeyMessages.h"
#include "kits/interface/window/PointerPresence.h"
#include "kits/interface/window/WindowRoster.h"
#include "kits/kernel/OS.h"

namespace {

struct HeldKey {
    BMessenger holder;
    BMessage up;
};

// Who was told that a key went down is told that it went up, though a menu or another window may
// have the keyboard by then. The display thread's, which works until the process ends.
std::map<uint32, HeldKey>& HeldKeys() {
    static auto& keys = *new std::map<uint32, HeldKey>;
    return keys;
}

} // namespace

EventPoster::EventPoster(const BMessenger& target, double scale, bool isBlockable,
                         bool quitsProgram)
    : fTarget(target)
    , fScale(scale)
    , fIsBlockable(isBlockable)
    , fQuitsProgram(quitsProgram) {}

EventPoster::~EventPoster() {
    PointerPresence::Shared().Note(this, false);
}

void EventPoster::HandleEvent(const host::WindowEvent& event) {
    std::visit([this](const auto& one) { Handle(one); }, event);
}

bool EventPoster::IsBlocked() const {
    return fIsBlockable && WindowRoster::Shared().HasAlert();
}

// Rectangles end at whole pixels, so a place between them would be in none.
BPoint EventPoster::WholePlace(int x, int y) const {
    return {static_cast<float>(std::floor(x / fScale)), static_cast<float>(std::floor(y / fScale))};
}

BMessage EventPoster::PointerMessage(uint32 what, const host::PointerMoved& at,
                                     bigtime_t when) const {
    BMessage message(what);
    message.AddInt64("when", when);
    message.AddPoint("where", WholePlace(at.x, at.y));
    message.AddPoint("screen_where", BPoint(static_cast<float>(at.screenX / fScale),
                                            static_cast<float>(at.screenY / fScale)));
    message.AddInt32("buttons", static_cast<int32>(at.buttons));
    message.AddInt32("modifiers", static_cast<int32>(at.modifiers));
    return message;
}

void EventPoster::Handle(const host::PointerMoved& event) {
    PointerPresence::Shared().NoteEvent();
    if (IsBlocked() && !fIsPressed)
        return;
    BMessage message = PointerMessage(B_MOUSE_MOVED, event, system_time());
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::PointerLeft&) {
    fTarget.SendMessage(kPointerLeft);
}

void EventPoster::Handle(const host::PointerOver& event) {
    PointerPresence::Shared().Note(this, event.over);
}

void EventPoster::Handle(const host::ButtonPressed& event) {
    if (IsBlocked()) {
        WindowRoster::Shared().PointAtAlert();
        return;
    }
    fIsPressed = true;
    BMessage message = PointerMessage(B_MOUSE_DOWN, event.at, event.when);
    message.AddInt32("clicks", event.clicks);
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::ButtonReleased& event) {
    if (IsBlocked() && !fIsPressed)
        return;
    fIsPressed = event.at.buttons != 0;
    BMessage message = PointerMessage(B_MOUSE_UP, event.at, event.when);
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::WheelTurned& event) {
    if (IsBlocked())
        return;
    BMessage message = PointerMessage(B_MOUSE_WHEEL_CHANGED, event.at, system_time());
    message.AddFloat("be:wheel_delta_x", event.deltaX);
    message.AddFloat("be:wheel_delta_y", event.deltaY);
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::KeyChanged& event) {
    std::map<uint32, HeldKey>& held = HeldKeys();
    auto found = held.find(event.key);
    if (IsBlocked() && (event.down || found == held.end()))
        return;
    BMessenger target = event.down || found == held.end() ? fTarget : found->second.holder;
    if (event.down)
        held.insert_or_assign(event.key, HeldKey{fTarget, ReleaseMessage(event)});
    else if (found != held.end())
        held.erase(found);
    for (const BMessage& message : KeyMessages(event))
        target.SendMessage(&message);
}

// As if one key had typed it all; no key goes up for it.
void EventPoster::Handle(const host::TextCommitted& event) {
    if (IsBlocked())
        return;
    BMessage message = TypedMessage(event.text, system_time());
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::ColorDropped& event) {
    if (IsBlocked()) {
        WindowRoster::Shared().PointAtAlert();
        return;
    }
    BMessage message(kColorDropped);
    message.AddPoint("where", WholePlace(event.x, event.y));
    message.AddData("color", B_RGB_COLOR_TYPE, &event.color, sizeof(event.color));
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::FocusChanged& event) {
    if (!event.active)
        LetKeysGo();
    BMessage message(B_WINDOW_ACTIVATED);
    message.AddInt64("when", system_time());
    message.AddBool("active", event.active);
    fTarget.SendMessage(&message);
}

// Their release goes to the window that has the focus now, perhaps another program's.
void EventPoster::LetKeysGo() {
    std::erase_if(HeldKeys(), [this](const auto& entry) {
        const HeldKey& key = entry.second;
        if (key.holder != fTarget)
            return false;
        fTarget.SendMessage(&key.up);
        return true;
    });
}

void EventPoster::Handle(const host::FrameChanged& event) {
    BMessage message(kFrameChanged);
    message.AddInt32("left", event.frame.left);
    message.AddInt32("top", event.frame.top);
    message.AddInt32("right", event.frame.right);
    message.AddInt32("bottom", event.frame.bottom);
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::MinimizedChanged& event) {
    BMessage message(B_MINIMIZE);
    message.AddInt64("when", system_time());
    message.AddBool("minimize", event.minimized);
    fTarget.SendMessage(&message);
}

void EventPoster::Handle(const host::CloseRequested&) {
    if (fQuitsProgram && be_app != nullptr)
        be_app->QuitFromOutside(false);
    else if (IsBlocked())
        WindowRoster::Shared().PointAtAlert();
    else
        fTarget.SendMessage(B_QUIT_REQUESTED);
}

#include "kits/interface/window/EventTranslator.h"

#include <cmath>
#include <map>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/drawing/InterfaceDefs.h"
#include "kits/interface/window/PointerPresence.h"
#include "kits/interface/window/WindowRoster.h"
#include "kits/kernel/OS.h"

namespace {

constexpr uint32 kLocks = B_CAPS_LOCK | B_SCROLL_LOCK | B_NUM_LOCK;
constexpr uint32 kCapsLockKey = 0x3b;
constexpr uint32 kNumLockKey = 0x22;

struct ModifierKey {
    uint32 key;
    uint32 bit;
};
constexpr ModifierKey kModifierKeys[] = {
    {0x4b, B_SHIFT_KEY},   {0x56, B_SHIFT_KEY},   {0x5c, B_CONTROL_KEY},
    {0x60, B_CONTROL_KEY}, {0x5d, B_COMMAND_KEY}, {0x5f, B_COMMAND_KEY},
    {0x66, B_OPTION_KEY},  {0x67, B_OPTION_KEY},  {0x68, B_MENU_KEY},
};

uint32 ModifiersOf(const host::KeyStates& states) {
    uint32 modifiers = 0;
    for (const ModifierKey& modifier : kModifierKeys) {
        if (host::IsHeld(states, modifier.key))
            modifiers |= modifier.bit;
    }
    return modifiers;
}

void Set(host::KeyStates& states, uint32 key, bool isHeld) {
    uint8 bit = 0x80 >> key % 8;
    uint8& byte = states[key / 8];
    byte = isHeld ? byte | bit : byte & ~bit;
}

// By its place: what a key of another program types is not known.
bool TypesSomething(uint32 key) {
    host::KeyStates states{};
    Set(states, key, true);
    return key != kCapsLockKey && key != kNumLockKey && ModifiersOf(states) == 0;
}

void AddStates(BMessage& message, const host::KeyStates& states) {
    message.AddData("states", B_UINT8_TYPE, states.data(), static_cast<ssize_t>(states.size()));
}

BMessage MessageOf(const host::KeyChanged& key, bool isMapped) {
    BMessage message(key.down ? (isMapped ? B_KEY_DOWN : B_UNMAPPED_KEY_DOWN)
                              : (isMapped ? B_KEY_UP : B_UNMAPPED_KEY_UP));
    message.AddInt64("when", key.when);
    message.AddInt32("key", static_cast<int32>(key.key));
    message.AddInt32("modifiers", static_cast<int32>(key.modifiers));
    AddStates(message, key.states);
    if (key.down && key.repeated)
        message.AddInt32("be:key_repeat", 1);
    if (!key.text.empty())
        message.AddString("bytes", key.text.c_str());
    return message;
}

// B_MODIFIERS_CHANGED if the key has changed them, then the key's own message.
std::vector<BMessage> MessagesOf(const host::KeyChanged& key, const host::KeyStates& before,
                                 bool isMapped) {
    const uint32 locks = key.modifiers & kLocks;
    const uint32 old = locks | ModifiersOf(before);
    const uint32 now = locks | ModifiersOf(key.states);
    std::vector<BMessage> messages;
    if (old != now) {
        BMessage& message = messages.emplace_back(B_MODIFIERS_CHANGED);
        message.AddInt64("when", key.when);
        message.AddInt32("modifiers", static_cast<int32>(now));
        message.AddInt32("be:old_modifiers", static_cast<int32>(old));
        AddStates(message, key.states);
    }
    messages.push_back(MessageOf(key, isMapped));
    return messages;
}

void Send(const BMessenger& target, const host::KeyChanged& key) {
    host::KeyStates before = key.states;
    Set(before, key.key, !key.down || key.repeated);
    for (const BMessage& message : MessagesOf(key, before, !key.text.empty()))
        target.SendMessage(&message);
}

struct HeldKey {
    BMessenger holder;
    host::KeyChanged press;
};

// A release goes to the window that got the press, though a menu or another window may have the
// keyboard by then. The display thread's, which works until the process ends.
std::map<uint32, HeldKey>& HeldKeys() {
    static auto& keys = *new std::map<uint32, HeldKey>;
    return keys;
}

} // namespace

std::vector<BMessage> KeyMessages(const host::SessionKey& key) {
    std::vector<BMessage> messages = MessagesOf({.down = key.down,
                                                 .repeated = host::IsHeld(key.before, key.key),
                                                 .key = key.key,
                                                 .modifiers = ModifiersOf(key.states),
                                                 .text = {},
                                                 .states = key.states,
                                                 .when = key.when},
                                                key.before, TypesSomething(key.key));
    // Keyboards came or went.
    if (key.key == 0)
        messages.pop_back();
    return messages;
}

EventTranslator::EventTranslator(const BMessenger& target, double scale, WindowRole role)
    : fTarget(target)
    , fScale(scale)
    , fRole(role) {}

EventTranslator::~EventTranslator() {
    if (fRole == WindowRole::Alert)
        WindowRoster::Shared().SetActiveAlert(this, false);
    PointerPresence::Shared().Note(this, false);
}

void EventTranslator::HandleEvent(const host::WindowEvent& event) {
    std::visit([this](const auto& one) { Handle(one); }, event);
}

bool EventTranslator::IsBlocked() const {
    return (fRole == WindowRole::Main || fRole == WindowRole::Other) &&
           WindowRoster::Shared().HasAlert();
}

// Rectangles end at whole pixels, so a place between them would be in none.
BPoint EventTranslator::WholePlace(int x, int y) const {
    return {static_cast<float>(std::floor(x / fScale)), static_cast<float>(std::floor(y / fScale))};
}

BMessage EventTranslator::PointerMessage(uint32 what, const host::PointerMoved& at,
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

void EventTranslator::Handle(const host::PointerMoved& event) {
    PointerPresence::Shared().NoteEvent();
    if (IsBlocked() && !fIsPressed)
        return;
    BMessage message = PointerMessage(B_MOUSE_MOVED, event, system_time());
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::PointerLeft&) {
    fTarget.SendMessage(kPointerLeft);
}

void EventTranslator::Handle(const host::PointerOver& event) {
    PointerPresence::Shared().Note(this, event.over);
}

void EventTranslator::Handle(const host::ButtonPressed& event) {
    if (IsBlocked()) {
        WindowRoster::Shared().PointAtAlert();
        return;
    }
    fIsPressed = true;
    BMessage message = PointerMessage(B_MOUSE_DOWN, event.at, event.when);
    message.AddInt32("clicks", event.clicks);
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::ButtonReleased& event) {
    if (IsBlocked() && !fIsPressed)
        return;
    fIsPressed = event.at.buttons != 0;
    BMessage message = PointerMessage(B_MOUSE_UP, event.at, event.when);
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::WheelTurned& event) {
    if (IsBlocked())
        return;
    BMessage message = PointerMessage(B_MOUSE_WHEEL_CHANGED, event.at, system_time());
    message.AddFloat("be:wheel_delta_x", event.deltaX);
    message.AddFloat("be:wheel_delta_y", event.deltaY);
    fTarget.SendMessage(&message);
}

// The press decides the release: who gets it, and whether it is one of a key that types something,
// though Shift or Num Lock may have changed since. A repeat that comes to a menu leaves the key to
// the window that it was pressed in.
void EventTranslator::Handle(const host::KeyChanged& event) {
    std::map<uint32, HeldKey>& keys = HeldKeys();
    auto held = keys.find(event.key);
    if (!event.down && held != keys.end()) {
        host::KeyChanged release = event;
        release.text = held->second.press.text;
        Send(held->second.holder, release);
        keys.erase(held);
        return;
    }
    if (IsBlocked())
        return;
    if (event.down && (!event.repeated || held == keys.end()))
        keys.insert_or_assign(event.key, HeldKey{fTarget, event});
    Send(fTarget, event);
}

// As if one key had typed it all; no key goes up for it.
void EventTranslator::Handle(const host::TextCommitted& event) {
    if (IsBlocked())
        return;
    host::KeyChanged press{};
    press.down = true;
    press.text = event.text;
    press.when = system_time();
    const BMessage message = MessageOf(press, true);
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::ColorDropped& event) {
    if (IsBlocked()) {
        WindowRoster::Shared().PointAtAlert();
        return;
    }
    BMessage message(kColorDropped);
    message.AddPoint("where", WholePlace(event.x, event.y));
    message.AddData("color", B_RGB_COLOR_TYPE, &event.color, sizeof(event.color));
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::LinkDragged& event) {
    BMessage message(kLinkDragged);
    if (event.over && !IsBlocked())
        message.AddPoint("where", WholePlace(event.x, event.y));
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::LinkDropped& event) {
    if (IsBlocked()) {
        WindowRoster::Shared().PointAtAlert();
        return;
    }
    BMessage message(kLinkDropped);
    message.AddPoint("where", WholePlace(event.x, event.y));
    message.AddString("url", event.link.url.c_str());
    message.AddString("title", event.link.title.c_str());
    message.AddString("file", event.file.c_str());
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::FocusChanged& event) {
    if (!event.active)
        LetKeysGo();
    if (fRole == WindowRole::Alert)
        WindowRoster::Shared().SetActiveAlert(this, event.active);
    BMessage message(B_WINDOW_ACTIVATED);
    message.AddInt64("when", system_time());
    message.AddBool("active", event.active);
    fTarget.SendMessage(&message);
}

// Their release goes to the window that has the focus now, perhaps another program's.
void EventTranslator::LetKeysGo() {
    std::erase_if(HeldKeys(), [this](const auto& entry) {
        if (entry.second.holder != fTarget)
            return false;
        host::KeyChanged release = entry.second.press;
        release.down = false;
        Set(release.states, release.key, false);
        const BMessage message = MessageOf(release, !release.text.empty());
        fTarget.SendMessage(&message);
        return true;
    });
}

void EventTranslator::Handle(const host::FrameChanged& event) {
    BMessage message(kFrameChanged);
    message.AddInt32("left", event.frame.left);
    message.AddInt32("top", event.frame.top);
    message.AddInt32("right", event.frame.right);
    message.AddInt32("bottom", event.frame.bottom);
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::MinimizedChanged& event) {
    BMessage message(B_MINIMIZE);
    message.AddInt64("when", system_time());
    message.AddBool("minimize", event.minimized);
    fTarget.SendMessage(&message);
}

void EventTranslator::Handle(const host::CloseRequested&) {
    if (fRole == WindowRole::Main)
        BApplication::QuitFromOutside(false);
    else if (IsBlocked())
        WindowRoster::Shared().PointAtAlert();
    else
        fTarget.SendMessage(B_QUIT_REQUESTED);
}

#include "quillbar/hotkey/Tracker.h"

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "quillbar/base/Commands.h"
#include "quillbar/base/Keypad.h"
#include "quillbar/base/Settings.h"
#include "quillbar/base/Trace.h"

namespace {

constexpr int32 kModifierBits =
    kQBAltKey | kQBShiftKey | kQBControlKey | kQBWindowsKey | kQBMenuKey;

// Raw key codes.
constexpr int32 kLeftShift = 0x4b;
constexpr int32 kRightShift = 0x56;
constexpr int32 kLeftControl = 0x5c;
constexpr int32 kRightControl = 0x60;
constexpr int32 kLeftAlt = 0x5d;
constexpr int32 kRightAlt = 0x5f;
constexpr int32 kLeftWindows = 0x66;
constexpr int32 kRightWindows = 0x67;
constexpr int32 kMenu = 0x68;
constexpr int32 kKeypadDelete = 0x65;

constexpr ssize_t kStatesSize = 16;

} // namespace

// The keys that are held, as a keyboard message has them.
class QBTracker::Keys {
public:
    explicit Keys(const BMessage* message) {
        const void* data = nullptr;
        ssize_t size = 0;
        if (message && message->FindData("states", B_UINT8_TYPE, &data, &size) == B_OK &&
            size >= kStatesSize)
            fStates = static_cast<const uint8*>(data);
    }

    bool AreKnown() const { return fStates != nullptr; }
    bool IsHeld(int32 key) const { return (fStates[key / 8] & 0x80 >> key % 8) != 0; }
    bool IsHeld(int32 left, int32 right) const { return IsHeld(left) || IsHeld(right); }
    // The lowest digit of the keypad that is held, or -1.
    int Digit() const {
        for (int digit = 0; digit < 10; ++digit) {
            if (IsHeld(kKeypadDigits[digit]))
                return digit;
        }
        return -1;
    }

private:
    const uint8* fStates = nullptr;
};

QBTracker::QBTracker()
    : BView(BRect(-1, -1, -1, -1), "qb_tracker_view", B_FOLLOW_NONE, 0)
    , fState(Idle)
    , fFolder(0)
    , fSlot(0) {}

QBTracker::~QBTracker() {
    SetEventMask(0);
}

void QBTracker::AttachedToWindow() {
    SetEventMask(B_KEYBOARD_EVENTS);
}

void QBTracker::MessageReceived(BMessage* message) {
    if (message->what != B_MODIFIERS_CHANGED) {
        BView::MessageReceived(message);
        return;
    }
    const Keys keys(message);
    if (keys.AreKnown())
        ModifiersChanged(keys);
}

void QBTracker::ModifiersChanged(const Keys& keys) {
    fHeldKeys.alt = keys.IsHeld(kLeftAlt, kRightAlt);
    fHeldKeys.shift = keys.IsHeld(kLeftShift, kRightShift);
    fHeldKeys.control = keys.IsHeld(kLeftControl, kRightControl);
    fHeldKeys.windows = keys.IsHeld(kLeftWindows, kRightWindows);
    fHeldKeys.menu = keys.IsHeld(kMenu);
    if (fHeldKeys.shift && fHeldKeys.control && fHeldKeys.alt)
        Window()->Activate(true);

    const int32 hotKey = gSettings->GetHotKey();
    if (!HotKeyIsHeld(hotKey))
        return;
    fState = (hotKey & kQBDeleteKey) ? AwaitingDelete : AwaitingDigits;
    Trace(__PRETTY_FUNCTION__, "Got sequence going");
}

// Its modifiers, of which it must have one; others may be held too.
bool QBTracker::HotKeyIsHeld(int32 hotKey) const {
    const int32 held = (fHeldKeys.alt ? kQBAltKey : 0) | (fHeldKeys.shift ? kQBShiftKey : 0) |
                       (fHeldKeys.control ? kQBControlKey : 0) |
                       (fHeldKeys.windows ? kQBWindowsKey : 0) | (fHeldKeys.menu ? kQBMenuKey : 0);
    const int32 modifiers = hotKey & kModifierBits;
    return modifiers != 0 && (held & modifiers) == modifiers;
}

void QBTracker::KeyDown(const char*, int32) {
    const Keys keys(Window()->CurrentMessage());
    if (!keys.AreKnown())
        return;
    const int32 hotKey = gSettings->GetHotKey();
    switch (fState) {
    case AwaitingDelete:
        fState = keys.IsHeld(kKeypadDelete) ? AwaitingDigits : Idle;
        break;
    case Idle:
        if ((hotKey & kQBDeleteKey) && !(hotKey & kModifierBits) && keys.IsHeld(kKeypadDelete))
            fState = AwaitingDigits;
        break;
    case AwaitingDigits:
        DigitTyped(keys);
        break;
    }
}

void QBTracker::DigitTyped(const Keys& keys) {
    const int digit = keys.Digit();
    if (digit < 0) {
        EndSequence();
        return;
    }
    const auto number = static_cast<int8>(digit + 1);
    if (fFolder <= 0) {
        fFolder = number;
        return;
    }
    fSlot = number;
    // An active window handles the digits itself.
    if (!Window()->IsActive())
        Launch();
    EndSequence();
}

void QBTracker::Launch() {
    BMessage message(kQBLaunch);
    message.AddInt8("folder", fFolder);
    message.AddInt8("slot", fSlot);
    Window()->PostMessage(&message);
}

void QBTracker::EndSequence() {
    fState = Idle;
    fFolder = 0;
    fSlot = 0;
}

void QBTracker::KeyUp(const char* bytes, int32 numBytes) {
    if (!Window()->IsActive())
        Window()->PostMessage(B_KEY_UP);
    BView::KeyUp(bytes, numBytes);
}

void QBTracker::Pulse() {}

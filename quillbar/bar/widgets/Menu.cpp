#include "quillbar/bar/widgets/Menu.h"

#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/base/Keypad.h"
#include "quillbar/base/Trace.h"

namespace {

constexpr int32 kEscape = 1;
constexpr int32 kKeypadSlash = 35;
// The title and the separator come before the slots.
constexpr int32 kFirstSlot = 2;

} // namespace

void QBMenu::KeyDown(const char*, int32) {
    const BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    int32 key = 0;
    if (!message || message->FindInt32("key", &key) != B_OK)
        return;
    Trace(__PRETTY_FUNCTION__, "Key = 0x%x", static_cast<unsigned>(key));
    if (key == kEscape || key == kKeypadSlash)
        Hide();
    else if (const int digit = DigitOfKeypad(key); digit >= 0)
        Choose(static_cast<char>('0' + digit));
}

void QBMenu::Choose(char digit) {
    Trace(__PRETTY_FUNCTION__, "Digit = %c", digit);
    for (int32 i = kFirstSlot; i < CountItems(); ++i) {
        auto* item = dynamic_cast<QBMenuItem*>(ItemAt(i));
        if (!item)
            continue;
        const char first = item->Label()[0];
        Trace(__PRETTY_FUNCTION__, "First character = %c", first);
        if (first == digit) {
            Trace(__PRETTY_FUNCTION__, "Found the item");
            item->Invoke();
            Hide();
            return;
        }
    }
}

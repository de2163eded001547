#include "kits/interface/text/Clipboard.h"

#include <chrono>
#include <future>
#include <utility>

#include "base/Errors.h"
#include "host/x11/Display.h"
#include "kits/app/Message.h"
#include "kits/interface/window/DraggedFile.h"
#include "kits/kernel/Locker.h"

namespace {

constexpr char kTextField[] = "text/plain";
constexpr std::chrono::seconds kPatience(4);

// Empty if nobody has one, or does not answer in time.
std::string DesktopText(host::Display& display) {
    auto answered = std::make_shared<std::promise<std::string>>();
    auto text = answered->get_future();
    display.AskSelection(host::SelectionKind::Clipboard, [answered](status_t, std::string answer) {
        answered->set_value(std::move(answer));
    });
    return text.wait_for(kPatience) == std::future_status::ready ? text.get() : std::string();
}

} // namespace

BClipboard* const be_clipboard = new BClipboard("system");

struct BClipboard::State {
    BLocker locker{"clipboard"};
    // Locked.
    BMessage data;
    bool isCurrent = false;
};

BClipboard::BClipboard(const char*)
    : fState(std::make_unique<State>()) {}

BClipboard::~BClipboard() = default;

bool BClipboard::Lock() {
    if (!fState->locker.Lock())
        return false;
    if (fState->locker.CountLocks() == 1)
        fState->isCurrent = false;
    return true;
}

void BClipboard::Unlock() {
    fState->locker.Unlock();
}

bool BClipboard::IsLocked() const {
    return fState->locker.IsLocked();
}

BMessage* BClipboard::Data() const {
    if (!IsLocked())
        return nullptr;
    if (!std::exchange(fState->isCurrent, true)) {
        std::string text = DesktopText(*host::Display::Shared());
        // The program's other fields stay valid while the desktop still has the program's text.
        if (text != PlainTextOf(fState->data)) {
            fState->data.MakeEmpty();
            if (!text.empty()) {
                fState->data.AddData(kTextField, B_MIME_TYPE, text.data(),
                                     static_cast<ssize_t>(text.size()));
            }
        }
    }
    return &fState->data;
}

status_t BClipboard::Clear() {
    if (!IsLocked())
        return B_NOT_ALLOWED;
    fState->isCurrent = true;
    return fState->data.MakeEmpty();
}

status_t BClipboard::Commit() {
    if (!IsLocked())
        return B_NOT_ALLOWED;
    host::Display::Shared()->OwnSelection(host::SelectionKind::Clipboard, PlainTextOf(*Data()));
    return B_OK;
}

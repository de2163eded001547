#include <algorithm>

#include "kits/app/Message.h"
#include "kits/interface/text/Clipboard.h"
#include "kits/interface/text/TextField.h"

namespace {

// Enough for all that a field takes of a text.
constexpr size_t kMaxTaken = 1 << 20;

} // namespace

std::string TextField::SelectedText() const {
    auto [start, end] = Selection();
    return fLine.Text().substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
}

void TextField::Cut() {
    Copy();
    if (fAnchor != fCaret)
        Change(Selection(), {}, UndoHistory::Kind::Other);
}

void TextField::Copy() {
    std::string text = SelectedText();
    if (text.empty() || !be_clipboard->Lock())
        return;
    be_clipboard->Clear();
    be_clipboard->Data()->AddData("text/plain", B_MIME_TYPE, text.data(),
                                  static_cast<ssize_t>(text.size()));
    be_clipboard->Commit();
    be_clipboard->Unlock();
}

void TextField::Paste() {
    AskFor(host::SelectionKind::Clipboard);
}

// The middle button brings it into other fields and programs.
void TextField::OfferSelected() {
    host::Display* display = host::Display::Shared();
    if (display != nullptr && fAnchor != fCaret)
        display->OwnSelection(host::SelectionKind::Primary, SelectedText());
}

// Whoever has the text may be slow: the window must not wait for it.
void TextField::AskFor(host::SelectionKind selection) {
    host::Display* display = host::Display::Shared();
    if (display == nullptr)
        return;
    display->AskSelection(selection, [target = BMessenger(this)](status_t, std::string text) {
        BMessage message(kTextCame);
        text.resize(std::min(text.size(), kMaxTaken));
        std::erase(text, '\0');
        message.AddString("text", text.c_str());
        target.SendMessage(&message);
    });
}

void TextField::TakeText(const BMessage& message) {
    if (fIsEnabled)
        Insert(message.GetString("text", ""));
}

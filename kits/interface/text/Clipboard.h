#pragma once

#include <memory>
#include <string>

#include "base/Types.h"

class BMessage;

// Data that programs exchange: the user copies in one and pastes in another. The data is
// a message whose field "text/plain" (B_MIME_TYPE) is the text, UTF-8; other fields stay in the
// program. Any thread, with the clipboard locked where a function requires it.
//
// It belongs to this kit because the display server carries it.
class BClipboard {
public:
    // The desktop's clipboard, which is named "system": there is no other one.
    explicit BClipboard(const char* name);
    ~BClipboard();

    BClipboard(const BClipboard&) = delete;
    BClipboard& operator=(const BClipboard&) = delete;

    // As those of BLocker.
    bool Lock();
    void Unlock();
    bool IsLocked() const;

    // The clipboard's data, to be read, or to be changed after Clear(); null unless locked.
    // The first call after Lock() asks the program that holds the data, and waits for it for some
    // seconds at most; the message is empty if there is no text.
    BMessage* Data() const;
    // Empties the data. B_NOT_ALLOWED unless locked.
    status_t Clear();
    // Offers the data to all programs. B_NOT_ALLOWED unless locked.
    status_t Commit();

private:
    struct State;
    std::unique_ptr<State> fState;
};

// The desktop's clipboard.
extern BClipboard* const be_clipboard;

#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "host/x11/Display.h"
#include "kits/app/Messenger.h"

class BMessage;
class BWindow;

// The text in "text/plain" of a message that other programs may get, up to the NUL that some
// senders count.
std::string PlainTextOf(const BMessage& message);

// The forms in which other programs can take a message that is dragged, the most telling first: the
// link in "be:url" (as a list only if no file is offered), and the text in "text/plain".
std::vector<host::DragData> DragDataOf(const BMessage& message);

// Makes the empty file where a dragged message is dropped, and asks the drag's sender to write it.
class DraggedFile : public host::DragSink {
public:
    // `sender` gets the B_COPY_TARGET message.
    DraggedFile(const BMessenger& window, const BMessenger& sender);

    // Sends the request to the window's thread. Display thread.
    void SaveRequested(const std::string& path, std::function<void(status_t)> answer) override;

    // Makes the file, under another name if there is one at that path. Before it answers, a sender
    // of this window has written the file; one of another looper has got the message. The window's
    // thread, locked.
    void Save(BWindow& window);

private:
    status_t Create(const std::string& path, BWindow& window) const;

    const BMessenger fWindow;
    const BMessenger fSender;
    std::mutex fMutex;
    // Guarded by fMutex.
    std::string fPath;
    std::function<void(status_t)> fAnswer;
};

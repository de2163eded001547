#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "host/x11/Display.h"
#include "kits/app/Messenger.h"

class BWindow;

// What is dragged out of a window and may become a file: it makes the empty file where it was
// dropped and asks the drag's sender to write it.
class DraggedFile : public host::DragSink {
public:
    // `sender` gets the B_COPY_TARGET message.
    DraggedFile(const BMessenger& window, const BMessenger& sender);

    // Hands the request to the window's thread. Display thread.
    void SaveRequested(const std::string& path, std::function<void(status_t)> answer) override;

    // Carries it out. When it answers, a sender of this window has written the file; one of another
    // looper has been told to. The window's thread, locked.
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

#include "kits/interface/window/DraggedFile.h"

#include <utility>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/EventPoster.h"
#include "kits/interface/window/Window.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Path.h"

DraggedFile::DraggedFile(const BMessenger& window, const BMessenger& sender)
    : fWindow(window)
    , fSender(sender) {}

void DraggedFile::SaveRequested(const std::string& path, std::function<void(status_t)> answer) {
    {
        std::lock_guard lock(fMutex);
        fPath = path;
        fAnswer = answer;
    }
    const status_t status = fWindow.SendMessage(kSaveDragged);
    if (status != B_OK)
        answer(status);
}

void DraggedFile::Save(BWindow& window) {
    std::unique_lock lock(fMutex);
    const std::string path = std::exchange(fPath, {});
    const auto answer = std::exchange(fAnswer, nullptr);
    lock.unlock();
    if (answer)
        answer(Create(path, window));
}

status_t DraggedFile::Create(const std::string& path, BWindow& window) const {
    BPath directory;
    const BPath file(path.c_str());
    entry_ref ref;
    status_t status = file.GetParent(&directory);
    if (status == B_OK)
        status = BEntry(directory.Path()).GetRef(&ref);
    if (status == B_OK)
        status = BFile(file.Path(), B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS).InitCheck();
    if (status != B_OK)
        return status;
    BMessage written(B_COPY_TARGET);
    written.AddRef("directory", &ref);
    written.AddString("name", file.Leaf());
    BLooper* looper = nullptr;
    BHandler* sender = fSender.Target(&looper);
    if (looper != &window)
        return fSender.SendMessage(&written);
    window.DispatchMessage(&written, sender);
    return B_OK;
}

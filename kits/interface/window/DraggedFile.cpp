#include "kits/interface/window/DraggedFile.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string_view>
#include <utility>

#include "base/Utf8.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Bitmap.h"
#include "kits/interface/window/WindowState.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Path.h"

namespace {

constexpr int kMaxNumber = 1000; // behind a file's name

bool IsOneLine(std::string_view text) {
    return !text.empty() && std::ranges::none_of(text, [](char byte) {
        return static_cast<uint8>(byte) < 0x20 || byte == 0x7f;
    });
}

// The name of the file that the sender will write where the message is dropped; empty if the
// message offers no such copy.
std::string DragFileNameOf(const BMessage& message) {
    int32 action;
    for (int32 i = 0; message.FindInt32("be:actions", i, &action) == B_OK; i++) {
        if (static_cast<uint32>(action) == B_COPY_TARGET)
            return message.GetString("be:clip_name", "");
    }
    return {};
}

// Makes an empty file at `path`, or under the first free name with a number.
status_t CreateBeside(BPath& path) {
    const std::string wanted = path.Path();
    for (int number = 2;; number++) {
        const status_t status =
            BFile(path.Path(), B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS).InitCheck();
        if (status != B_FILE_EXISTS || number > kMaxNumber)
            return status;
        path.SetTo((wanted + " " + std::to_string(number)).c_str());
    }
}

} // namespace

std::string PlainTextOf(const BMessage& message) {
    const void* data = nullptr;
    ssize_t size = 0;
    if (message.FindData("text/plain", B_MIME_TYPE, &data, &size) != B_OK)
        return {};
    std::string_view text(static_cast<const char*>(data), static_cast<size_t>(size));
    return std::string(text.substr(0, text.find('\0')));
}

std::vector<host::DragData> DragDataOf(const BMessage& message) {
    std::vector<host::DragData> data;
    const std::string url = message.GetString("be:url", "");
    if (IsOneLine(url)) {
        const std::string title = message.GetString("be:clip_name", "");
        // File managers take a list before a file, whatever the order, and then try to copy the
        // page.
        if (DragFileNameOf(message).empty())
            data.push_back({"text/uri-list", url + "\r\n"});
        data.push_back({"text/x-moz-url", Utf16Of(url + "\n" + title)});
    }
    const std::string text = PlainTextOf(message);
    if (!text.empty()) {
        for (const char* type : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain"})
            data.push_back({type, text});
    }
    return data;
}

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
    BPath file(path.c_str());
    entry_ref ref;
    status_t status = file.GetParent(&directory);
    if (status == B_OK)
        status = BEntry(directory.Path()).GetRef(&ref);
    if (status == B_OK)
        status = CreateBeside(file);
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

status_t BView::DragMessage(const BMessage* message, BBitmap* image, drawing_mode, BPoint offset,
                            BHandler* replyTo) {
    const std::unique_ptr<BBitmap> owned(image);
    if (message == nullptr)
        return B_BAD_VALUE;
    if (fWindow == nullptr)
        return B_NO_INIT;
    BWindow::State& state = *fWindow->fState;
    const BMessenger sender(replyTo != nullptr ? replyTo : this);
    host::DragSpec spec{.data = DragDataOf(*message), .fileName = DragFileNameOf(*message)};
    if (image != nullptr && image->IsValid()) {
        spec.image = image->Picture();
        spec.hotX = static_cast<int>(std::floor(offset.x * state.scale));
        spec.hotY = static_cast<int>(std::floor(offset.y * state.scale));
    }
    auto file = std::make_shared<DraggedFile>(BMessenger(fWindow), sender);
    state.draggedFile = file;
    const status_t status = state.host->Drag(spec, file);
    if (status == B_OK)
        state.EndPress();
    return status;
}

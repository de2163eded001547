#include "kits/interface/window/DragData.h"

#include <algorithm>
#include <string_view>

#include "base/Utf8.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"

namespace {

// Up to the NUL that some senders count.
std::string PlainTextOf(const BMessage& message) {
    const void* data = nullptr;
    ssize_t size = 0;
    if (message.FindData("text/plain", B_MIME_TYPE, &data, &size) != B_OK)
        return {};
    std::string_view text(static_cast<const char*>(data), static_cast<size_t>(size));
    return std::string(text.substr(0, text.find('\0')));
}

bool IsOneLine(std::string_view text) {
    return !text.empty() && std::ranges::none_of(text, [](char byte) {
        return static_cast<uint8>(byte) < 0x20 || byte == 0x7f;
    });
}

} // namespace

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

std::string DragFileNameOf(const BMessage& message) {
    int32 action;
    for (int32 i = 0; message.FindInt32("be:actions", i, &action) == B_OK; i++) {
        if (static_cast<uint32>(action) == B_COPY_TARGET)
            return message.GetString("be:clip_name", "");
    }
    return {};
}

#include "kits/interface/window/DragData.h"

#include <algorithm>
#include <cstring>
#include <string_view>

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

// How many bytes the character takes that begins with `lead`; 0 if none does.
size_t LengthOf(uint8 lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xc2 && lead < 0xe0)
        return 2;
    if (lead >= 0xe0 && lead < 0xf0)
        return 3;
    return lead >= 0xf0 && lead < 0xf5 ? 4 : 0;
}

void AppendUnits(std::u16string& units, char32_t character) {
    if (character >= 0x110000 || (character >= 0xd800 && character < 0xe000))
        return;
    if (character < 0x10000) {
        units += static_cast<char16_t>(character);
        return;
    }
    units += static_cast<char16_t>(0xd800 + ((character - 0x10000) >> 10));
    units += static_cast<char16_t>(0xdc00 + ((character - 0x10000) & 0x3ff));
}

} // namespace

std::string Utf16Of(std::string_view text) {
    std::u16string units;
    while (!text.empty()) {
        const auto lead = static_cast<uint8>(text[0]);
        const size_t length = LengthOf(lead);
        const auto isTail = [](char byte) { return (static_cast<uint8>(byte) & 0xc0) == 0x80; };
        if (length == 0 || length > text.size() ||
            !std::ranges::all_of(text.substr(1, length - 1), isTail)) {
            text.remove_prefix(1);
            continue;
        }
        char32_t character = length == 1 ? lead : lead & (0x7fu >> length);
        for (char byte : text.substr(1, length - 1))
            character = character << 6 | (static_cast<uint8>(byte) & 0x3f);
        AppendUnits(units, character);
        text.remove_prefix(length);
    }
    std::string bytes(units.size() * sizeof(char16_t), '\0');
    memcpy(bytes.data(), units.data(), bytes.size());
    return bytes;
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

std::string DragFileNameOf(const BMessage& message) {
    int32 action;
    for (int32 i = 0; message.FindInt32("be:actions", i, &action) == B_OK; i++) {
        if (static_cast<uint32>(action) == B_COPY_TARGET)
            return message.GetString("be:clip_name", "");
    }
    return {};
}

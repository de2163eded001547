#include "kits/support/String.h"

#include <strings.h>

#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

const char* OrEmpty(const char* string) {
    return string ? string : "";
}

int32 Position(size_t found) {
    return found == std::string::npos ? B_ERROR : static_cast<int32>(found);
}

int32 Sign(int difference) {
    return (difference > 0) - (difference < 0);
}

template <typename Number>
void AppendNumber(std::string& bytes, Number number) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    bytes.append(digits, end);
}

} // namespace

BString& BString::SetTo(const char* string) {
    // A copy first: `string` may point into this one.
    fBytes = std::string(OrEmpty(string));
    return *this;
}

BString& BString::SetTo(const char* string, int32 maxLength) {
    fBytes = maxLength > 0 ? std::string(OrEmpty(string), strnlen(OrEmpty(string), maxLength)) : "";
    return *this;
}

BString& BString::SetTo(char fill, int32 length) {
    fBytes.assign(fill && length > 0 ? length : 0, fill);
    return *this;
}

BString& BString::SetToFormat(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length > 0 ? length : 0, '\0');
    vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);
    fBytes = std::move(text);
    return *this;
}

char BString::ByteAt(int32 index) const {
    return index >= 0 && index < Length() ? fBytes[index] : '\0';
}

BString& BString::Append(const char* string) {
    fBytes += std::string(OrEmpty(string));
    return *this;
}

BString& BString::Append(const char* string, int32 maxLength) {
    return *this += BString(string, maxLength);
}

BString& BString::Prepend(const char* string) {
    fBytes = OrEmpty(string) + fBytes;
    return *this;
}

BString& BString::operator+=(const BString& string) {
    fBytes += string.fBytes;
    return *this;
}

BString& BString::operator+=(char byte) {
    if (byte)
        fBytes += byte;
    return *this;
}

BString& BString::operator<<(int64 number) {
    AppendNumber(fBytes, number);
    return *this;
}

BString& BString::operator<<(uint64 number) {
    AppendNumber(fBytes, number);
    return *this;
}

BString& BString::operator<<(float number) {
    char digits[64];
    const auto end =
        std::to_chars(digits, digits + sizeof(digits), number, std::chars_format::fixed, 2);
    fBytes.append(digits, end.ptr);
    return *this;
}

BString& BString::Truncate(int32 length) {
    if (length < Length())
        fBytes.resize(length > 0 ? length : 0);
    return *this;
}

BString& BString::Remove(int32 from, int32 length) {
    if (from >= 0 && from < Length() && length > 0)
        fBytes.erase(from, length);
    return *this;
}

BString& BString::CopyInto(BString& into, int32 from, int32 length) const {
    const bool isInside = from >= 0 && from < Length() && length > 0;
    into.fBytes = isInside ? fBytes.substr(from, length) : std::string();
    return into;
}

int32 BString::FindFirst(const char* string, int32 from) const {
    if (!string || from < 0)
        return B_ERROR;
    return Position(fBytes.find(string, from));
}

int32 BString::FindFirst(const BString& string, int32 from) const {
    return FindFirst(string.String(), from);
}

int32 BString::FindFirst(char byte, int32 from) const {
    return from < 0 ? B_ERROR : Position(fBytes.find(byte, from));
}

int32 BString::FindLast(const char* string) const {
    return string ? Position(fBytes.rfind(string)) : B_ERROR;
}

int32 BString::FindLast(char byte) const {
    return Position(fBytes.rfind(byte));
}

int32 BString::Compare(const char* string) const {
    return Sign(strcmp(String(), OrEmpty(string)));
}

int32 BString::Compare(const char* string, int32 length) const {
    return length > 0 ? Sign(strncmp(String(), OrEmpty(string), length)) : 0;
}

int32 BString::ICompare(const char* string) const {
    return Sign(strcasecmp(String(), OrEmpty(string)));
}

int32 BString::ICompare(const char* string, int32 length) const {
    return length > 0 ? Sign(strncasecmp(String(), OrEmpty(string), length)) : 0;
}

#include "kits/support/String.h"

#include <strings.h>

#include <charconv>
#include <cstring>

namespace {

const char* OrEmpty(const char* string) {
    return string ? string : "";
}

int32 Position(size_t found) {
    return found == std::string::npos ? B_ERROR : static_cast<int32>(found);
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

char BString::ByteAt(int32 index) const {
    return index >= 0 && index < Length() ? fBytes[index] : '\0';
}

BString& BString::Append(const char* string) {
    fBytes += std::string(OrEmpty(string));
    return *this;
}

BString& BString::Prepend(const char* string) {
    fBytes = OrEmpty(string) + fBytes;
    return *this;
}

BString& BString::operator+=(const BString& string) {
    fBytes += string.fBytes;
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

BString& BString::Remove(int32 from, int32 length) {
    if (from >= 0 && from < Length() && length > 0)
        fBytes.erase(from, length);
    return *this;
}

int32 BString::FindFirst(char byte, int32 from) const {
    return from < 0 ? B_ERROR : Position(fBytes.find(byte, from));
}

int32 BString::ICompare(const char* string) const {
    const int difference = strcasecmp(String(), OrEmpty(string));
    return (difference > 0) - (difference < 0);
}

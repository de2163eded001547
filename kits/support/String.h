#pragma once

#include <compare>
#include <string>

#include "base/Types.h"

// A string of bytes that ends before its NUL. Positions and lengths are in bytes, not characters;
// nothing here looks at the encoding. A position outside the string finds, copies or removes
// nothing. Each copy has its own bytes; a value is used by one thread at a time.
class BString {
public:
    BString() = default;
    BString(const char* string) { SetTo(string); }
    BString(const char* string, int32 maxLength) { SetTo(string, maxLength); }

    // The bytes up to the NUL, at most `maxLength` of them; a null pointer is the empty string.
    BString& SetTo(const char* string);
    BString& SetTo(const char* string, int32 maxLength);

    // Never null; valid until the string is changed or destroyed.
    const char* String() const { return fBytes.c_str(); }
    int32 Length() const { return static_cast<int32>(fBytes.size()); }
    bool IsEmpty() const { return fBytes.empty(); }
    // The byte at `index`, 0 outside the string.
    char ByteAt(int32 index) const;
    char operator[](int32 index) const { return ByteAt(index); }

    BString& Append(const char* string);
    BString& Prepend(const char* string);
    BString& operator+=(const char* string) { return Append(string); }
    BString& operator+=(const BString& string);

    BString& operator<<(const char* string) { return Append(string); }
    BString& operator<<(const BString& string) { return *this += string; }
    BString& operator<<(int32 number) { return *this << static_cast<int64>(number); }
    BString& operator<<(uint32 number) { return *this << static_cast<uint64>(number); }
    BString& operator<<(int64 number);
    BString& operator<<(uint64 number);
    // With two places behind the point.
    BString& operator<<(float number);

    // Removes the `length` bytes from `from` on, or as many as there are.
    BString& Remove(int32 from, int32 length);

    // The first position at or after `from` where `byte` stands; B_ERROR if there is none.
    int32 FindFirst(char byte, int32 from = 0) const;

    // Below, equal to or above 0, byte by byte; ASCII letters that differ in case are equal.
    int32 ICompare(const char* string) const;

    bool operator==(const BString& other) const = default;
    bool operator==(const char* other) const { return fBytes == (other ? other : ""); }
    std::strong_ordering operator<=>(const BString& other) const = default;

private:
    std::string fBytes;
};

inline BString operator+(BString left, const BString& right) {
    return left += right;
}
inline BString operator+(BString left, const char* right) {
    return left += right;
}

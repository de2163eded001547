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
    // `length` times the byte `fill`.
    BString& SetTo(char fill, int32 length);
    // As printf does it, of any length.
    BString& SetToFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Never null; valid until the string is changed or destroyed.
    const char* String() const { return fBytes.c_str(); }
    int32 Length() const { return static_cast<int32>(fBytes.size()); }
    bool IsEmpty() const { return fBytes.empty(); }
    // The byte at `index`, 0 outside the string.
    char ByteAt(int32 index) const;
    char operator[](int32 index) const { return ByteAt(index); }

    BString& Append(const char* string);
    BString& Append(const char* string, int32 maxLength);
    BString& Prepend(const char* string);
    BString& operator+=(const char* string) { return Append(string); }
    BString& operator+=(const BString& string);
    BString& operator+=(char byte);

    BString& operator<<(const char* string) { return Append(string); }
    BString& operator<<(const BString& string) { return *this += string; }
    BString& operator<<(char byte) { return *this += byte; }
    BString& operator<<(int32 number) { return *this << static_cast<int64>(number); }
    BString& operator<<(uint32 number) { return *this << static_cast<uint64>(number); }
    BString& operator<<(int64 number);
    BString& operator<<(uint64 number);
    // With two places behind the point.
    BString& operator<<(float number);

    // Cuts the string to `length` bytes; a longer `length` leaves it as it is.
    BString& Truncate(int32 length);
    BString& Remove(int32 from, int32 length);
    // Makes `into` the `length` bytes from `from`, or what there is of them; returns `into`.
    BString& CopyInto(BString& into, int32 from, int32 length) const;

    // The position of the first place at or after `from`, or of the last place, where `string`
    // stands; B_ERROR if there is none.
    int32 FindFirst(const char* string, int32 from = 0) const;
    int32 FindFirst(const BString& string, int32 from = 0) const;
    int32 FindFirst(char byte, int32 from = 0) const;
    int32 FindLast(const char* string) const;
    int32 FindLast(char byte) const;

    // Below, equal to or above 0, byte by byte; the I forms take ASCII letters as equal whatever
    // their case, the length forms look at that many bytes only.
    int32 Compare(const char* string) const;
    int32 Compare(const BString& string) const { return Compare(string.String()); }
    int32 Compare(const char* string, int32 length) const;
    int32 ICompare(const char* string) const;
    int32 ICompare(const BString& string) const { return ICompare(string.String()); }
    int32 ICompare(const char* string, int32 length) const;

    bool operator==(const BString& other) const = default;
    bool operator==(const char* other) const { return Compare(other) == 0; }
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

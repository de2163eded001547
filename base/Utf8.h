#pragma once

#include <string>
#include <string_view>

#include "base/Types.h"

// Text from outside may hold any bytes. All reading of UTF-8 goes through these functions, which
// take no form longer than needed, no surrogate and nothing beyond the last character. Any thread.

// The code of a byte that is part of no valid character.
inline constexpr char32_t kNoCharacter = 0xffffffff;

struct Utf8Character {
    char32_t code;
    size_t length; // in bytes; 1 with kNoCharacter
};

// The character at the beginning of `text`, which is not empty.
Utf8Character FirstCharacter(std::string_view text);

bool IsUtf8(std::string_view text);

// As many whole characters of `text` as fit into `room` bytes.
std::string_view CutUtf8(std::string_view text, size_t room);

// New lines and tabs become blanks, those at the end are left out, as are other control characters;
// bytes that are not UTF-8 become replacement marks.
std::string OneLineOf(std::string_view text);

// In this computer's byte order, two or four bytes for a character. What is not UTF-8 is left out.
std::string Utf16Of(std::string_view text);

// What is no character becomes a replacement mark, half a unit at the end is left out.
std::string Utf8FromUtf16(std::string_view bytes, bool isBigEndian);

// A replacement mark if it is no character's code.
void AppendUtf8(std::string& text, char32_t code);

// Between UTF-8 and ISO 8859-1, one byte a character. What the latter lacks becomes a question
// mark.
std::string Utf8FromLatin1(std::string_view text);
std::string Latin1FromUtf8(std::string_view text);

// In the place of what is not UTF-8, where text is shown.
inline constexpr std::string_view kReplacementMark = "\xef\xbf\xbd";

// Characters that move the pen or the line and have no shape.
bool IsControl(char32_t code);

#pragma once

#include <string>
#include <string_view>

namespace host {

// What a person is shown for `text`: valid UTF-8 on one line. Bytes that are not UTF-8 become
// replacement marks, each control character and line separator becomes one dot, and what lies
// beyond a few thousand bytes, which no window shows, is left out. Any thread.
std::string VisibleText(std::string_view text);

// What a field of one line takes of `text`: new lines and tabs become blanks, but those at the end
// are left out as other control characters are; bytes that are not UTF-8 become replacement marks.
// All of it, whatever its length.
std::string LineOf(std::string_view text);

// The length in bytes of what VisibleText shows as one character at the beginning of `text`, which
// is not empty: that of a character of valid UTF-8, 1 for a byte that belongs to none.
int ShownLength(std::string_view text);

// The length in bytes of the character that valid UTF-8 begins with.
int CharacterLength(char lead);

} // namespace host

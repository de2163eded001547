#pragma once

#include <string>
#include <string_view>

namespace host {

// What a person is shown for `text`: valid UTF-8 on one line. Bytes that are not UTF-8 become
// replacement marks, each control character and line separator becomes one dot, and what lies
// beyond a few thousand bytes, which no window shows, is left out. Any thread.
std::string VisibleText(std::string_view text);

// The length in bytes of the character that valid UTF-8 begins with.
int CharacterLength(char lead);

} // namespace host

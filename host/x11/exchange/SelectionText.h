#pragma once

#include <string>
#include <string_view>

namespace host {

// Between UTF-8 and the characters of X's STRING type, one byte each. What the latter does not have
// becomes a question mark.
std::string Utf8FromLatin1(std::string_view text);
std::string Latin1FromUtf8(std::string_view text);

} // namespace host

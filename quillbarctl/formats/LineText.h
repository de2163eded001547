#pragma once

#include <string>
#include <string_view>

// The text with everything that would break a line or its fields, or move a terminal's pen, written
// as "\t", "\n", "\\" or "\xHH" for each byte; so are bytes that are not UTF-8.
std::string EscapeLine(std::string_view text);

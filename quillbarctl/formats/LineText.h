#pragma once

#include <string>
#include <string_view>

#include "quillbarctl/Bookmark.h"

// The text with everything that would break a line or its fields, or move a terminal's pen, written
// as "\t", "\n", "\\" or "\xHH" for each byte; so are bytes that are not UTF-8.
std::string EscapeLine(std::string_view text);

// The same for a message: no longer than a line or two.
std::string Shown(std::string_view text);

// A line of `list`: folder, slot, name, address and keywords with tabs between.
std::string LineOf(size_t folder, size_t slot, const Bookmark& bookmark);

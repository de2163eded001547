#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/links/Link.h"

// What the readers of the forms share.

inline constexpr std::string_view kBlanks = " \t\r\n\f\v";

// As UTF-8, unchecked, up to the first NUL.
std::string TextOf(std::string_view bytes);

// Takes a line off the beginning of `text`, without what ends it and the blanks around it.
std::string_view TakeLine(std::string_view& text);

std::string_view WithoutBlanks(std::string_view text);

// In ASCII, letters of either case. `lower` is in lower case.
bool IsWord(std::string_view text, std::string_view lower);

// Nothing if the URL may not become a bookmark.
std::optional<Link> MakeLink(std::string_view url, std::string_view title);

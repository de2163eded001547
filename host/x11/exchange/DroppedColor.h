#pragma once

#include <optional>
#include <string_view>

#include "base/Color.h"

namespace host {

// Of application/x-color: red, green, blue and opacity, 16 bits each in this computer's order. The
// opacity does not count. Nothing if it is of any other length.
std::optional<rgb_color> ColorOfWords(std::string_view bytes);

// Of "#rrggbb", white space or NULs around it. Nothing for any other text.
std::optional<rgb_color> ColorOfText(std::string_view text);

} // namespace host

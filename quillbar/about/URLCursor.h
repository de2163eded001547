#pragma once

#include <array>
#include <string_view>

#include "base/Types.h"

// A hand that points up, in the form that BCursor takes.
namespace url_cursor {

inline constexpr std::string_view kHand[16] = {
    "  ##            ", //
    " #  #           ", //
    " #  #           ", //
    " #  #           ", //
    " #  ###         ", //
    " #  #  ###      ", //
    " #  #  #  ##    ", //
    "##  #  #  # #   ", //
    "# # #  #  #  #  ", //
    "#            #  ", //
    " #           #  ", //
    " #           #  ", //
    "  #         #   ", //
    "   #        #   ", //
    "   ##########   ", //
    "                ", //
};
inline constexpr uint8 kHotRow = 1;
inline constexpr uint8 kHotColumn = 2;

// The outline is black; what it encloses in a row, and itself, is seen.
constexpr std::array<uint8, 68> Draw() {
    std::array<uint8, 68> data{16, 1, kHotRow, kHotColumn};
    for (size_t row = 0; row < 16; ++row) {
        const size_t first = kHand[row].find('#'), last = kHand[row].rfind('#');
        for (size_t column = 0; column < 16; ++column) {
            const size_t byte = 4 + 2 * row + column / 8;
            const auto bit = static_cast<uint8>(0x80 >> column % 8);
            if (kHand[row][column] == '#')
                data[byte] |= bit;
            if (first != std::string_view::npos && column >= first && column <= last)
                data[byte + 32] |= bit;
        }
    }
    return data;
}

} // namespace url_cursor

inline constexpr std::array<uint8, 68> kURLCursor = url_cursor::Draw();

#pragma once

#include <array>

#include "base/Types.h"

namespace host {
struct PointerImage;
}

// The pointers that the desktop has.
enum view_cursor {
    B_SYSTEM_DEFAULT_CURSOR,
    B_I_BEAM_CURSOR,
    B_HAND_CURSOR = B_SYSTEM_DEFAULT_CURSOR,
};

// The look of the pointer over a view. A value.
class BCursor {
public:
    BCursor(view_cursor cursor = B_SYSTEM_DEFAULT_CURSOR)
        : fSystem(cursor) {}
    // Its own picture, 68 bytes: the side (16), the bits of a pixel (1), row and column of the
    // pixel that points, then two bytes for each row, leftmost pixel highest: first the pixels
    // that are black, then those that are seen. The system's default if it is not of that kind.
    explicit BCursor(const void* cursorData);

    bool operator==(const BCursor&) const = default;

    // For the kit.
    bool IsOwn() const { return fData[0] != 0; }
    host::PointerImage Picture() const;

private:
    view_cursor fSystem = B_SYSTEM_DEFAULT_CURSOR;
    std::array<uint8, 68> fData{};
};

#include "kits/interface/drawing/Cursor.h"

#include <cstring>

#include "host/x11/Display.h"

namespace {

constexpr uint8 kSide = 16;
constexpr size_t kInk = 4;
constexpr size_t kMask = kInk + size_t{2} * kSide;

} // namespace

BCursor::BCursor(const void* cursorData) {
    const auto* bytes = static_cast<const uint8*>(cursorData);
    if (bytes != nullptr && bytes[0] == kSide && bytes[1] == 1 && bytes[2] < kSide &&
        bytes[3] < kSide)
        std::memcpy(fData.data(), bytes, fData.size());
}

host::PointerImage BCursor::Picture() const {
    host::PointerImage image;
    image.hotY = fData[2];
    image.hotX = fData[3];
    for (size_t row = 0; row < kSide; row++) {
        image.ink[row] =
            static_cast<uint16>(fData[kInk + 2 * row] << 8 | fData[kInk + 2 * row + 1]);
        image.mask[row] =
            static_cast<uint16>(fData[kMask + 2 * row] << 8 | fData[kMask + 2 * row + 1]);
    }
    return image;
}

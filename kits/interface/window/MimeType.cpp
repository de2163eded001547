#include "kits/interface/window/MimeType.h"

#include <span>
#include <string_view>

#include "base/Errors.h"
#include "kits/interface/window/Bitmap.h"

namespace {

// Icons are drawn in a square of 32 units.
constexpr double kUnits = 32;

struct Layer {
    uint8 color;
    bool (*covers)(double x, double y);
};

// Each channel in steps from 0 to 5.
constexpr uint8 Color(int red, int green, int blue) {
    return static_cast<uint8>(red * 36 + green * 6 + blue);
}

constexpr bool InBox(double x, double y, double left, double top, double right, double bottom) {
    return x >= left && x < right && y >= top && y < bottom;
}

constexpr bool InEllipse(double x, double y, double centerX, double centerY, double width,
                         double height) {
    const double dx = (x - centerX) / width, dy = (y - centerY) / height;
    return dx * dx + dy * dy < 1;
}

// A sheet whose right top corner is folded; `inset` leaves out its edge.
constexpr bool InSheet(double x, double y, double inset) {
    return InBox(x, y, 4 + inset, 1 + inset, 26 - inset, 31 - inset) && x - y < 17 - inset;
}

// A ribbon that ends in two points.
constexpr bool InRibbon(double x, double y, double inset) {
    const double notch = x < 22 ? 22 - x : x - 22;
    return InBox(x, y, 16 + inset, 6 + inset, 28 - inset, 30) && y < 23 + notch - inset;
}

constexpr bool InShoulders(double x, double y, double inset) {
    return y < 30 - inset && InEllipse(x, y, 16, 30, 13 - inset, 13 - inset);
}

constexpr Layer kBookmark[] = {
    {Color(1, 1, 1), [](double x, double y) { return InSheet(x, y, 0); }},
    {Color(5, 5, 5), [](double x, double y) { return InSheet(x, y, 2); }},
    {Color(3, 3, 4), [](double x, double y) { return InBox(x, y, 8, 8, 14, 10); }},
    {Color(3, 3, 4), [](double x, double y) { return InBox(x, y, 8, 14, 14, 16); }},
    {Color(3, 3, 4), [](double x, double y) { return InBox(x, y, 8, 20, 14, 22); }},
    {Color(2, 0, 0), [](double x, double y) { return InRibbon(x, y, 0); }},
    {Color(4, 0, 0), [](double x, double y) { return InRibbon(x, y, 2); }},
};

constexpr Layer kPerson[] = {
    {Color(0, 1, 2), [](double x, double y) { return InShoulders(x, y, 0); }},
    {Color(1, 2, 4), [](double x, double y) { return InShoulders(x, y, 2); }},
    {Color(2, 1, 0), [](double x, double y) { return InEllipse(x, y, 16, 10, 8, 9); }},
    {Color(5, 4, 3), [](double x, double y) { return InEllipse(x, y, 16, 10, 6, 7); }},
};

std::span<const Layer> LayersOf(std::string_view type) {
    if (type == "application/x-vnd.Be-bookmark")
        return kBookmark;
    if (type == "application/x-person")
        return kPerson;
    return {};
}

uint8 PixelAt(std::span<const Layer> layers, double x, double y) {
    uint8 color = B_TRANSPARENT_MAGIC_CMAP8;
    for (const Layer& layer : layers) {
        if (layer.covers(x, y))
            color = layer.color;
    }
    return color;
}

} // namespace

status_t BMimeType::GetIcon(BBitmap* icon, icon_size size) const {
    const auto side = static_cast<float>(size - 1);
    if (icon == nullptr || icon->ColorSpace() != B_CMAP8 ||
        icon->Bounds() != BRect(0, 0, side, side))
        return B_BAD_VALUE;
    const std::span<const Layer> layers = LayersOf(fType);
    if (layers.empty())
        return B_ENTRY_NOT_FOUND;
    const double unit = kUnits / static_cast<int>(size);
    for (int row = 0; row < size; row++) {
        uint8* pixels = icon->Bits() + ptrdiff_t(row) * icon->BytesPerRow();
        for (int column = 0; column < size; column++)
            pixels[column] = PixelAt(layers, (column + 0.5) * unit, (row + 0.5) * unit);
    }
    return B_OK;
}

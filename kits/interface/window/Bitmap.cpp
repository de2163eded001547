#include "kits/interface/window/Bitmap.h"

#include <algorithm>
#include <cmath>

#include "host/draw/Canvas.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/View.h"

namespace {

constexpr float kMaxSide = 16000;

// Whole pixels, no more than a canvas can have.
BRect Usable(BRect bounds) {
    if (!bounds.IsValid())
        return {};
    return {0, 0, std::min(std::ceil(bounds.Width()), kMaxSide),
            std::min(std::ceil(bounds.Height()), kMaxSide)};
}

int Devices(float length, double scale) {
    return static_cast<int>(std::floor((length + 1) * scale + 0.5));
}

constexpr uint32 kOpaque = 0xff000000;

uint32 PaletteColor(uint8 index) {
    constexpr uint32 kColors = 216;
    if (index == B_TRANSPARENT_MAGIC_CMAP8)
        return 0;
    if (index >= kColors)
        return kOpaque | (index - kColors) * 255 / 38 * 0x010101;
    constexpr uint32 kStep = 51;
    return kOpaque | index / 36 * kStep << 16 | index / 6 % 6 * kStep << 8 | index % 6 * kStep;
}

} // namespace

BBitmap::BBitmap(BRect bounds, color_space space, bool acceptsViews)
    : fBounds(Usable(bounds))
    , fSpace(space) {
    if (!IsValid())
        return;
    const double scale = DisplayScale();
    if (space == B_RGBA32) {
        fCanvas = std::make_unique<host::Canvas>(Devices(fBounds.Width(), scale),
                                                 Devices(fBounds.Height(), scale), scale,
                                                 host::Ground::Transparent);
    } else {
        fBits.resize((static_cast<size_t>(fBounds.Width()) + 1) *
                         (static_cast<size_t>(fBounds.Height()) + 1),
                     B_TRANSPARENT_MAGIC_CMAP8);
    }
    if (acceptsViews && fCanvas) {
        fRoot = std::make_unique<BView>(fBounds, "root", B_FOLLOW_ALL, 0);
        fRoot->fBitmap = this;
    }
}

BBitmap::~BBitmap() = default;

void BBitmap::AddChild(BView* child) {
    if (fRoot)
        fRoot->AddChild(child);
}

host::Image BBitmap::Picture() const {
    if (fCanvas)
        return fCanvas->Picture();
    const int width = BytesPerRow();
    if (width == 0)
        return {};
    fColors.resize(fBits.size());
    std::ranges::transform(fBits, fColors.begin(), PaletteColor);
    return {reinterpret_cast<const uint8*>(fColors.data()), width,
            static_cast<int>(fBits.size()) / width, width * 4};
}

host::Canvas* BBitmap::CanvasFor(BView& view) {
    if (fCanvas)
        fCanvas->SetClip(view.IsHidden() ? std::vector<BRect>() : std::vector{view.VisibleRect()});
    return fCanvas.get();
}

#include "kits/interface/window/Bitmap.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/draw/Canvas.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/View.h"
#include "kits/kernel/Locker.h"

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

struct BBitmap::State {
    State(BRect bounds_, color_space space_, bool acceptsViews_)
        : bounds(Usable(bounds_))
        , space(space_)
        , acceptsViews(acceptsViews_ && space_ == B_RGBA32)
        , root(bounds, "root", B_FOLLOW_ALL, 0) {
        if (!bounds.IsValid())
            return;
        double scale = DisplayScale();
        if (space == B_RGBA32) {
            canvas = std::make_unique<host::Canvas>(Devices(bounds.Width(), scale),
                                                    Devices(bounds.Height(), scale), scale,
                                                    host::Ground::Transparent);
        } else {
            bits.resize((static_cast<size_t>(bounds.Width()) + 1) *
                            (static_cast<size_t>(bounds.Height()) + 1),
                        B_TRANSPARENT_MAGIC_CMAP8);
        }
    }

    const BRect bounds;
    const color_space space;
    const bool acceptsViews;
    BLocker lock{"bitmap"};
    std::unique_ptr<host::Canvas> canvas; // of B_RGBA32
    std::vector<uint8> bits;              // of B_CMAP8
    std::vector<uint32> colors;           // that its picture has
    BView root;                           // parent of the views
};

BBitmap::BBitmap(BRect bounds, color_space space, bool acceptsViews)
    : fState(std::make_unique<State>(bounds, space, acceptsViews)) {
    fState->root.fBitmap = this;
}

BBitmap::~BBitmap() = default;

bool BBitmap::IsValid() const {
    return fState->bounds.IsValid();
}

BRect BBitmap::Bounds() const {
    return fState->bounds;
}

color_space BBitmap::ColorSpace() const {
    return fState->space;
}

bool BBitmap::Lock() {
    return fState->lock.Lock();
}

void BBitmap::Unlock() {
    fState->lock.Unlock();
}

uint8* BBitmap::Bits() {
    return fState->bits.empty() ? nullptr : fState->bits.data();
}

int32 BBitmap::BytesPerRow() const {
    return fState->bits.empty() ? 0 : static_cast<int32>(fState->bounds.Width()) + 1;
}

void BBitmap::AddChild(BView* child) {
    if (fState->acceptsViews)
        fState->root.AddChild(child);
}

host::Image BBitmap::Picture() const {
    if (fState->canvas)
        return fState->canvas->Picture();
    int width = BytesPerRow();
    if (width == 0)
        return {};
    fState->colors.assign(fState->bits.size(), 0);
    std::transform(fState->bits.begin(), fState->bits.end(), fState->colors.begin(), PaletteColor);
    return {reinterpret_cast<const uint8*>(fState->colors.data()), width,
            static_cast<int>(fState->bits.size()) / width, width * 4};
}

host::Canvas* BBitmap::CanvasFor(BView& view) {
    if (!fState->canvas)
        return nullptr;
    if (view.IsHidden())
        fState->canvas->SetClip({});
    else
        fState->canvas->SetClip({view.VisibleRect()});
    return fState->canvas.get();
}

#include "kits/interface/window/WindowState.h"

#include <utility>

namespace {

BRect PixelsOf(const host::PixelRect& rect) {
    return BRect(rect.left, rect.top, rect.right - 1, rect.bottom - 1);
}

} // namespace

void BWindow::State::Invalidate(BRect rect) {
    update.Include(rect & Bounds());
}

void BWindow::State::Update() {
    if (update.IsEmpty() || !IsVisible())
        return;
    if (!canvas)
        canvas = std::make_unique<host::Canvas>(device.Width(), device.Height(), scale);
    // What Draw() invalidates is drawn the next time.
    ClipRegion region = std::exchange(update, ClipRegion());
    region.IntersectWith(Bounds());
    ClipChanged();
    painting = &region;
    Paint(root, region);
    painting = nullptr;
    ClipChanged();
    for (const BRect& rect : region.Rects())
        damage.Include(PixelsOf(canvas->Snap(rect)));
}

void BWindow::State::Paint(BView& view, const ClipRegion& region) {
    BRect visible = view.VisibleRect();
    if (view.fHideCount > 0 || !visible.Intersects(region.Frame()))
        return;
    ClipRegion part = VisibleRegion(view);
    part.IntersectWith(region);
    if (!part.IsEmpty()) {
        CanvasFor(view)->SetBlending(host::Blending::Replace);
        canvas->FillRect(visible, view.ViewColor());
        BPoint origin = view.OriginInWindow();
        if (view.Flags() & B_WILL_DRAW)
            view.Draw(part.Frame().OffsetByCopy(-origin.x, -origin.y));
    }
    for (size_t i = 0; i < view.fChildren.size(); i++)
        Paint(*view.fChildren[i], region);
}

void BWindow::State::Present() {
    if (!canvas || !IsVisible())
        return;
    ClipRegion region = std::exchange(damage, ClipRegion());
    region.IntersectWith(PixelsOf({0, 0, device.Width(), device.Height()}));
    std::vector<host::PixelRect> shown;
    for (const BRect& rect : region.Rects())
        shown.push_back({static_cast<int>(rect.left), static_cast<int>(rect.top),
                         static_cast<int>(rect.right) + 1, static_cast<int>(rect.bottom) + 1});
    if (!shown.empty())
        host->Present(canvas->Picture(), shown);
}

ClipRegion BWindow::State::VisibleRegion(const BView& view) const {
    ClipRegion region(view.VisibleRect());
    BPoint origin = view.OriginInWindow();
    for (const BView* child : view.fChildren) {
        if (child->fHideCount == 0)
            region.Exclude(child->fFrame.OffsetByCopy(origin));
    }
    return region;
}

host::Canvas* BWindow::State::CanvasFor(BView& view) {
    if (!canvas)
        return nullptr;
    if (clipOwner != &view) {
        ClipRegion region = view.IsHidden() ? ClipRegion() : VisibleRegion(view);
        if (painting != nullptr)
            region.IntersectWith(*painting);
        canvas->SetClip(region.Rects());
        clipOwner = &view;
        clipFrame = PixelsOf(canvas->Snap(region.Frame()));
    }
    if (painting == nullptr)
        damage.Include(clipFrame);
    return canvas.get();
}

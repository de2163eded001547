#include "kits/interface/window/WindowState.h"

#include <algorithm>
#include <utility>

namespace {

constexpr size_t kMaxDamage = 32;

host::PixelRect Union(const host::PixelRect& a, const host::PixelRect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

bool Covers(const host::PixelRect& a, const host::PixelRect& b) {
    return host::Intersection(a, b) == b;
}

void AddDamage(std::vector<host::PixelRect>& damage, const host::PixelRect& rect) {
    if (rect.IsEmpty())
        return;
    if (std::any_of(damage.begin(), damage.end(),
                    [&](const host::PixelRect& known) { return Covers(known, rect); }))
        return;
    damage.push_back(rect);
    if (damage.size() <= kMaxDamage)
        return;
    host::PixelRect all = rect;
    for (const host::PixelRect& one : damage)
        all = Union(all, one);
    damage = {all};
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
        AddDamage(damage, canvas->Snap(rect));
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
    if (damage.empty() || !canvas || !IsVisible())
        return;
    std::vector<host::PixelRect> shown;
    for (const host::PixelRect& rect : std::exchange(damage, {})) {
        host::PixelRect inside = host::Intersection(rect, {0, 0, device.Width(), device.Height()});
        if (!inside.IsEmpty())
            shown.push_back(inside);
    }
    if (host && !shown.empty())
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
        clipFrame = canvas->Snap(region.Frame());
    }
    if (painting == nullptr)
        AddDamage(damage, clipFrame);
    return canvas.get();
}

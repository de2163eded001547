#include <algorithm>
#include <cmath>
#include <utility>

#include "kits/interface/drawing/Font.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuPlacement.h"

void BMenu::Layout() {
    const double scale = DisplayScale();
    if (scale != std::exchange(fScale, scale)) {
        for (BMenuItem* item : fItems)
            item->fMeasured = false;
    } else if (fLaidOut) {
        return;
    }
    fLaidOut = true;
    fDrawnIn = nullptr;
    float width = 0;
    float top = 0;
    fShortcutWidth = 0;
    for (BMenuItem* item : fItems) {
        item->Measure();
        width = std::max(width, item->fContentWidth);
        fShortcutWidth = std::max(fShortcutWidth, item->fShortcutWidth);
        item->fTop = top;
        top += item->fHeight;
    }
    fContentWidth = width + kItemLeft + RoomBehindLabels() + 2 * kMenuInset;
    fContentHeight = top + 2 * kMenuInset;
    if (Window() == nullptr)
        ResizeTo(fContentWidth - 1, fContentHeight - 1);
}

float BMenu::RoomBehindLabels() const {
    return fShortcutWidth == 0
               ? kItemRight
               : std::max(kItemRight, kShortcutGap + fShortcutWidth + kShortcutRight);
}

bool BMenu::NeedsScrolling() const {
    return Bounds().Height() + 1 < fContentHeight;
}

// Where items are seen.
BRect BMenu::Viewport() const {
    const float arrow = NeedsScrolling() ? kScrollArrowHeight : 0;
    return Bounds().InsetByCopy(kMenuInset, kMenuInset + arrow);
}

float BMenu::MaxScroll() const {
    return std::max(0.0f, fContentHeight - 2 * kMenuInset - (Viewport().Height() + 1));
}

bool BMenu::ScrollTo(float offset) {
    offset = std::round(std::clamp(offset, 0.0f, MaxScroll()));
    if (offset == fScroll)
        return false;
    fScroll = offset;
    Invalidate();
    return true;
}

void BMenu::ScrollToShow(const BMenuItem& item) {
    const float lowest = item.fTop + item.fHeight - (Viewport().Height() + 1);
    ScrollTo(std::min(std::max(fScroll, lowest), item.fTop));
}

BMenu::Part BMenu::PartAt(BPoint where) const {
    if (!Bounds().Contains(where))
        return Part::None;
    const BRect items = Viewport();
    if (NeedsScrolling() && where.y < items.top)
        return Part::UpArrow;
    if (NeedsScrolling() && where.y > items.bottom)
        return Part::DownArrow;
    return Part::Items;
}

BMenuItem* BMenu::SelectableAt(BPoint where) const {
    if (PartAt(where) != Part::Items)
        return nullptr;
    for (BMenuItem* item : fItems) {
        const BRect frame = item->Frame();
        // The border beside an item counts as the item.
        if (where.y >= frame.top && where.y < frame.bottom + 1)
            return item->IsSelectable() ? item : nullptr;
    }
    return nullptr;
}

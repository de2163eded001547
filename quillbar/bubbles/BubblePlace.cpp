#include "quillbar/bubbles/BubblePlace.h"

#include <algorithm>
#include <cmath>

#include "kits/interface/drawing/ClipRegion.h"
#include "kits/interface/text/TextView.h"
#include "kits/interface/window/Screen.h"
#include "kits/interface/window/Window.h"

namespace {

constexpr float kMargins = 4; // both sides
constexpr float kBelowPointer = 20;
constexpr float kAbovePointer = 4;
constexpr float kKeptFree = 3; // at the monitor's bottom

} // namespace

BPoint BubbleSize(const BTextView& text) {
    float width = 0;
    for (int32 line = 0; line < text.CountLines(); line++)
        width = std::max(width, std::trunc(text.LineWidth(line)));
    return {width + kMargins, text.TextHeight() + kMargins};
}

BPoint BubblePlace(BPoint size, BPoint pointer) {
    const BRect screen = BScreen::MonitorFrame(pointer);
    BPoint place = pointer + BPoint(0, kBelowPointer);
    if (place.y + size.y > screen.bottom - kKeptFree)
        place.y = pointer.y - size.y - kAbovePointer;
    if (place.x + size.x > screen.right)
        place.x = screen.right - size.x;
    return place;
}

BView* VisibleViewAt(BWindow& window, BPoint where) {
    if (window.IsHidden() || window.IsMinimized())
        return nullptr;
    // Rectangles end at whole pixels: a point between them would be in none.
    const BPoint corner = window.Frame().LeftTop();
    const BPoint inWindow(std::floor(where.x - corner.x), std::floor(where.y - corner.y));
    if (!window.Bounds().Contains(inWindow))
        return nullptr;
    BView* view = window.FindView(inWindow);
    if (!view)
        return nullptr;
    const BPoint inView = view->ConvertFromScreen(window.ConvertToScreen(inWindow));
    ClipRegion visible;
    view->GetClippingRegion(&visible);
    return visible.Contains(BPoint(std::round(inView.x), std::round(inView.y))) ? view : nullptr;
}

#include "kits/interface/window/Bevel.h"

void StrokeBevel(BView& view, BRect rect, rgb_color leftTop, rgb_color rightBottom) {
    view.SetHighColor(rightBottom);
    view.StrokeLine(rect.RightTop(), rect.RightBottom());
    view.StrokeLine(rect.LeftBottom());
    view.SetHighColor(leftTop);
    view.StrokeLine(rect.LeftBottom() - BPoint(0, 1), rect.LeftTop());
    view.StrokeLine(rect.RightTop() - BPoint(1, 0));
}

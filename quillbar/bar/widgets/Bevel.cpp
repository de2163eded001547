#include "quillbar/bar/widgets/Bevel.h"

#include <algorithm>

namespace {

constexpr int kStep = 80;

rgb_color Shifted(rgb_color color, int by) {
    auto shift = [by](uint8 channel) {
        return static_cast<uint8>(std::clamp(channel + by, 0, 255));
    };
    return {shift(color.red), shift(color.green), shift(color.blue), color.alpha};
}

} // namespace

Bevel BevelOf(rgb_color base, float tint) {
    return {tint_color(base, tint), tint_color(Shifted(base, kStep), tint),
            tint_color(Shifted(base, -kStep), tint)};
}

void StrokeLeftTop(BView* view, BRect frame, rgb_color color) {
    view->SetHighColor(color);
    view->StrokeLine(frame.RightTop(), frame.LeftTop());
    view->StrokeLine(frame.LeftTop(), frame.LeftBottom());
}

void StrokeRightBottom(BView* view, BRect frame, rgb_color color) {
    view->SetHighColor(color);
    view->StrokeLine(frame.LeftBottom(), frame.RightBottom());
    view->StrokeLine(frame.RightBottom(), frame.RightTop());
}

void FillWith(BView* view, BRect rect, rgb_color color) {
    view->SetHighColor(color);
    view->FillRect(rect);
}

#include "kits/interface/controls/Box.h"

#include <cmath>

namespace {

constexpr float kLabelLeft = 8;
constexpr float kLabelGap = 4; // between the label and the border beside it

} // namespace

BBox::BBox(BRect frame, const char* name, uint32 resizingMode, uint32 flags, border_style)
    : BView(frame, name, resizingMode, flags | B_FULL_UPDATE_ON_RESIZE) {
    SetFont(be_bold_font);
}

void BBox::SetLabel(const char* label) {
    fLabel = label ? label : "";
    Invalidate();
}

void BBox::AttachedToWindow() {
    if (Parent() != nullptr)
        SetViewColor(Parent()->ViewColor());
}

void BBox::Draw(BRect) {
    BRect frame = Bounds();
    float labelEnd = 0;
    if (!fLabel.empty()) {
        font_height font;
        GetFontHeight(&font);
        frame.top += std::floor(std::ceil(font.ascent + font.descent) / 2);
        labelEnd = kLabelLeft + std::ceil(StringWidth(Label())) + kLabelGap;
        SetHighColor(0, 0, 0);
        DrawString(Label(), BPoint(kLabelLeft, std::ceil(font.ascent)));
    }
    frame.right -= 1;
    frame.bottom -= 1;
    SetHighColor(tint_color(ViewColor(), B_LIGHTEN_2_TINT));
    StrokeBorder(frame.OffsetByCopy(1, 1), labelEnd);
    SetHighColor(tint_color(ViewColor(), B_DARKEN_2_TINT));
    StrokeBorder(frame, labelEnd);
}

void BBox::StrokeBorder(BRect frame, float labelEnd) {
    StrokeLine(frame.LeftTop(), frame.LeftBottom());
    StrokeLine(frame.RightBottom());
    StrokeLine(frame.RightTop());
    if (labelEnd == 0) {
        StrokeLine(frame.LeftTop());
        return;
    }
    if (labelEnd < frame.right)
        StrokeLine(BPoint(labelEnd, frame.top));
    StrokeLine(frame.LeftTop(), BPoint(kLabelLeft - kLabelGap, frame.top));
}

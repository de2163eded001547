#include "kits/interface/controls/StringView.h"

#include <cmath>

BStringView::BStringView(BRect frame, const char* name, const char* text, uint32 resizingMode,
                         uint32 flags)
    : BView(frame, name, resizingMode, flags | B_FULL_UPDATE_ON_RESIZE)
    , fText(text ? text : "") {}

void BStringView::SetText(const char* text) {
    if (fText == text)
        return;
    fText = text;
    Invalidate();
}

void BStringView::SetAlignment(alignment flag) {
    fAlignment = flag;
    Invalidate();
}

void BStringView::AttachedToWindow() {
    if (Parent() != nullptr)
        SetViewColor(Parent()->ViewColor());
}

void BStringView::Draw(BRect) {
    BFont font;
    GetFont(&font);
    float room = Bounds().Width() + 1 - StringWidth(Text());
    float x = fAlignment == B_ALIGN_LEFT ? 0 : fAlignment == B_ALIGN_RIGHT ? room : room / 2;
    DrawString(Text(), BPoint(std::floor(x), BaselineIn(Bounds(), font)));
}

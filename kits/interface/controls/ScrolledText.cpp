#include "kits/interface/controls/ScrolledText.h"

#include <algorithm>
#include <cmath>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"

namespace {

constexpr float kBarWidth = 9;
constexpr float kBarGap = 5; // between the text and the bar
constexpr float kShortestThumb = 20;
constexpr float kLine = 18;
constexpr float kWheelStep = 3 * kLine;

} // namespace

ScrolledText::ScrolledText(BTextView* text)
    : BView(BRect(0, 0, 0, 0), "text", B_FOLLOW_NONE, B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE)
    , fText(text) {
    SetViewColor(text->ViewColor());
    AddChild(text);
}

void ScrolledText::LayOut() {
    float width = Bounds().Width();
    fText->SetTextRect({0, 0, width, 0});
    if (fText->TextHeight() > Bounds().Height() + 1) {
        width -= kBarGap + kBarWidth;
        fText->SetTextRect({0, 0, width, 0});
    }
    fText->ResizeTo(width, std::max(std::ceil(fText->TextHeight()), Bounds().Height()));
    ScrollTo(0);
}

float ScrolledText::Hidden() const {
    return fText->Frame().Height() - Bounds().Height();
}

void ScrolledText::ScrollTo(float offset) {
    fOffset = std::round(std::clamp(offset, 0.0f, Hidden()));
    fText->MoveTo(0, -fOffset);
    Invalidate();
}

bool ScrolledText::ScrollByKey(char byte) {
    if (Hidden() <= 0)
        return false;
    const float page = Bounds().Height() - kLine;
    switch (byte) {
    case B_UP_ARROW:
        ScrollTo(fOffset - kLine);
        return true;
    case B_DOWN_ARROW:
        ScrollTo(fOffset + kLine);
        return true;
    case B_PAGE_UP:
        ScrollTo(fOffset - page);
        return true;
    case B_PAGE_DOWN:
        ScrollTo(fOffset + page);
        return true;
    case B_HOME:
        ScrollTo(0);
        return true;
    case B_END:
        ScrollTo(Hidden());
        return true;
    default:
        return false;
    }
}

BRect ScrolledText::Thumb() const {
    const BRect bounds = Bounds();
    const float room = bounds.Height() + 1;
    const float length = std::min(
        room, std::max(kShortestThumb, std::round(room * room / (fText->Frame().Height() + 1))));
    const float top = std::round((room - length) * fOffset / std::max(Hidden(), 1.0f));
    return {bounds.right + 1 - kBarWidth, top, bounds.right, top + length - 1};
}

void ScrolledText::Draw(BRect) {
    if (Hidden() <= 0)
        return;
    const BRect thumb = Thumb();
    SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
    FillRect({thumb.left, 0, thumb.right, Bounds().bottom});
    SetHighColor(tint_color(ViewColor(), B_LIGHTEN_1_TINT));
    FillRect(thumb);
    SetHighColor(tint_color(ViewColor(), B_DARKEN_3_TINT));
    StrokeRect(thumb);
}

// Beside the thumb its middle comes to the pointer.
void ScrolledText::MouseDown(BPoint where) {
    const BRect thumb = Thumb();
    if (Hidden() <= 0 || where.x < thumb.left)
        return;
    fIsDragged = true;
    fGrab = thumb.Contains(where) ? where.y - thumb.top : thumb.Height() / 2;
    SetMouseEventMask(B_POINTER_EVENTS);
    MouseMoved(where, B_INSIDE_VIEW, nullptr);
}

void ScrolledText::MouseMoved(BPoint where, uint32, const BMessage*) {
    const float way = Bounds().Height() - Thumb().Height();
    if (fIsDragged && way > 0)
        ScrollTo((where.y - fGrab) / way * Hidden());
}

void ScrolledText::MouseUp(BPoint) {
    fIsDragged = false;
}

void ScrolledText::MessageReceived(BMessage* message) {
    if (message->what == B_MOUSE_WHEEL_CHANGED)
        ScrollTo(fOffset + message->GetFloat("be:wheel_delta_y", 0) * kWheelStep);
    else
        BView::MessageReceived(message);
}

#include "kits/interface/text/TextControl.h"

#include <cmath>

#include "kits/interface/drawing/Font.h"
#include "kits/interface/text/TextField.h"
#include "kits/interface/window/Window.h"

namespace {

constexpr float kFrame = 2; // around the field

float FirstDivider(BRect frame, const char* label) {
    return label != nullptr && label[0] != '\0' ? std::floor(frame.Width() / 2) : 0;
}

} // namespace

BTextControl::BTextControl(BRect frame, const char* name, const char* label, const char* text,
                           BMessage* message, uint32 resizingMode, uint32 flags)
    : BControl(frame, name, label, message, resizingMode,
               flags | B_WILL_DRAW | B_FRAME_EVENTS | B_FULL_UPDATE_ON_RESIZE)
    , fField(new TextField(*this))
    , fDivider(FirstDivider(frame, label)) {
    AddChild(fField);
    PlaceField();
    BTextControl::SetText(text);
}

BTextControl::~BTextControl() = default;

void BTextControl::SetText(const char* text) {
    fField->SetText(text);
    fCommitted = fField->Text();
}

const char* BTextControl::Text() const {
    return fField->Text();
}

void BTextControl::SetDivider(float position) {
    fDivider = std::floor(position + 0.5f);
    PlaceField();
    Invalidate();
}

void BTextControl::SetEnabled(bool enabled) {
    if (enabled == IsEnabled())
        return;
    fField->SetEnabled(enabled);
    BControl::SetEnabled(enabled);
}

void BTextControl::MakeFocus(bool focus) {
    fField->MakeFocus(focus);
}

void BTextControl::SetFont(const BFont* font, uint32 mask) {
    BControl::SetFont(font, mask);
    fField->SetFont(font, mask);
    Invalidate();
}

BRect BTextControl::FieldFrame() const {
    BRect frame = Bounds();
    frame.left = fDivider;
    return frame;
}

void BTextControl::PlaceField() {
    BRect inside = FieldFrame().InsetByCopy(kFrame, kFrame);
    fField->MoveTo(inside.LeftTop());
    fField->ResizeTo(inside.Width(), inside.Height());
}

void BTextControl::AttachedToWindow() {
    BControl::AttachedToWindow();
    // The paper of a disabled field is a shade of the view colour, which is known only now.
    fField->SetEnabled(IsEnabled());
}

void BTextControl::FrameResized(float, float) {
    PlaceField();
}

void BTextControl::MouseDown(BPoint) {
    if (IsEnabled())
        MakeFocus(true);
}

void BTextControl::FocusChanged(bool focus) {
    Invalidate();
    if (!focus)
        Commit();
}

void BTextControl::Commit() {
    if (fCommitted == fField->Text())
        return;
    fCommitted = fField->Text();
    Invoke();
}

void BTextControl::Draw(BRect) {
    rgb_color base = ViewColor();
    BRect frame = FieldFrame();
    StrokeBevel(*this, frame, tint_color(base, B_DARKEN_1_TINT),
                tint_color(base, B_LIGHTEN_2_TINT));
    frame.InsetBy(1, 1);
    if (fField->ShowsFocus()) {
        SetHighColor(kFocusColor);
        StrokeRect(frame);
    } else {
        StrokeBevel(*this, frame, tint_color(base, IsEnabled() ? B_DARKEN_4_TINT : B_DARKEN_2_TINT),
                    base);
    }
    BFont own;
    GetFont(&own);
    SetHighColor(IsEnabled() ? rgb_color{0, 0, 0, 255} : tint_color(base, B_DARKEN_3_TINT));
    const float room = fDivider - 1;
    DrawLabel(*this, LabelFont(own, Label(), room), Label(), room,
              BPoint(0, fField->Frame().top + fField->Baseline()));
}

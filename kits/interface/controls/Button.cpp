#include "kits/interface/controls/Button.h"

#include <algorithm>
#include <cmath>

#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"

namespace {

constexpr rgb_color kWhite{255, 255, 255, 255};
constexpr float kRing = 3; // around the face, for the frame of a default button

// Without its four corner pixels.
void StrokeSoftRect(BView& view, BRect rect) {
    view.StrokeLine(BPoint(rect.left + 1, rect.top), BPoint(rect.right - 1, rect.top));
    view.StrokeLine(BPoint(rect.left + 1, rect.bottom), BPoint(rect.right - 1, rect.bottom));
    view.StrokeLine(BPoint(rect.left, rect.top + 1), BPoint(rect.left, rect.bottom - 1));
    view.StrokeLine(BPoint(rect.right, rect.top + 1), BPoint(rect.right, rect.bottom - 1));
}

} // namespace

BButton::BButton(BRect frame, const char* name, const char* label, BMessage* message,
                 uint32 resizingMode, uint32 flags)
    : BControl(frame, name, label, message, resizingMode, flags | B_FULL_UPDATE_ON_RESIZE) {}

void BButton::MakeDefault(bool isDefault) {
    fBecomesDefault = isDefault;
    if (Window() != nullptr && isDefault != (Window()->DefaultButton() == this))
        Window()->SetDefaultButton(isDefault ? this : nullptr);
}

void BButton::AttachedToWindow() {
    BControl::AttachedToWindow();
    if (fBecomesDefault)
        Window()->SetDefaultButton(this);
}

void BButton::Draw(BRect) {
    BRect face = Bounds().InsetByCopy(kRing, kRing);
    if (Window()->DefaultButton() == this) {
        SetHighColor(tint_color(ViewColor(), IsEnabled() ? B_DARKEN_4_TINT : B_DARKEN_2_TINT));
        StrokeSoftRect(*this, Bounds());
        SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
        FillRect(Bounds().InsetByCopy(1, 1));
    }
    DrawFace(face);
    DrawLabel(face);
}

void BButton::DrawFace(BRect face) {
    bool isPressed = Value() == B_CONTROL_ON;
    rgb_color base = tint_color(ViewColor(), isPressed ? B_DARKEN_2_TINT : B_LIGHTEN_1_TINT);
    SetHighColor(tint_color(ViewColor(), IsEnabled() ? B_DARKEN_MAX_TINT - 0.3f : B_DARKEN_2_TINT));
    StrokeSoftRect(*this, face);
    face.InsetBy(1, 1);
    SetHighColor(base);
    FillRect(face);
    rgb_color dark = tint_color(base, isPressed ? B_DARKEN_2_TINT : B_DARKEN_1_TINT);
    StrokeBevel(*this, face, isPressed ? dark : kWhite, isPressed ? base : dark);
    if (!isPressed && IsEnabled()) {
        face.InsetBy(1, 1);
        StrokeBevel(*this, face, kWhite, base);
    }
}

void BButton::DrawLabel(BRect face) {
    std::string label = Label();
    BFont font;
    GetFont(&font);
    font.TruncateString(&label, B_TRUNCATE_END, face.Width() - 5);
    float width = StringWidth(label.c_str());
    BPoint baseline(std::floor(face.left + (face.Width() + 1 - width) / 2), BaselineIn(face, font));
    bool isPressed = Value() == B_CONTROL_ON;
    SetHighColor(!IsEnabled() ? tint_color(ViewColor(), B_DARKEN_3_TINT)
                 : isPressed  ? kWhite
                              : rgb_color{0, 0, 0, 255});
    DrawString(label.c_str(), baseline);
    if (!IsFocus())
        return;
    SetHighColor(kFocusColor);
    float line = std::min(baseline.y + 2, face.bottom - 2);
    StrokeLine(BPoint(baseline.x, line), BPoint(baseline.x + std::ceil(width) - 1, line));
}

void BButton::MouseDown(BPoint) {
    BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    bool isPrimary = message == nullptr || (message->GetInt32("buttons", B_PRIMARY_MOUSE_BUTTON) &
                                            B_PRIMARY_MOUSE_BUTTON);
    if (!IsEnabled() || !isPrimary)
        return;
    SetTracking(true);
    SetValue(B_CONTROL_ON);
    SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS | B_NO_POINTER_HISTORY);
}

void BButton::MouseMoved(BPoint, uint32 transit, const BMessage*) {
    if (IsTracking())
        SetValue(transit == B_ENTERED_VIEW || transit == B_INSIDE_VIEW);
}

void BButton::MouseUp(BPoint where) {
    if (!IsTracking())
        return;
    SetTracking(false);
    SetValue(B_CONTROL_OFF);
    if (Bounds().Contains(where))
        Invoke();
}

void BButton::ResizeToPreferred() {
    font_height font;
    GetFontHeight(&font);
    ResizeTo(std::ceil(StringWidth(Label())) + 20 + 2 * kRing,
             std::ceil(font.ascent + font.descent) + 9 + 2 * kRing);
}

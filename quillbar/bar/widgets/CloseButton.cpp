#include "quillbar/bar/widgets/CloseButton.h"

#include <utility>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/window/Window.h"
#include "kits/kernel/OS.h"
#include "quillbar/bar/widgets/Bevel.h"

namespace {

constexpr bigtime_t kPollInterval = 20'000;

} // namespace

QBCloseButton::QBCloseButton(BRect frame)
    : BView(frame, "qb_close_button", B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW)
    , fPressed(false) {}

void QBCloseButton::AttachedToWindow() {
    if (Parent())
        SetViewColor(Parent()->ViewColor());
    BView::AttachedToWindow();
}

void QBCloseButton::Draw(BRect) {
    BRect frame = Bounds();
    rgb_color fill = ViewColor();
    auto [light, dark] = BevelOf(fill);

    StrokeLeftTop(this, frame, dark);
    StrokeRightBottom(this, frame, light);
    frame.InsetBy(1, 1);

    if (fPressed) {
        std::swap(light, dark);
        fill = tint_color(fill, B_DARKEN_1_TINT);
    } else if (!Window()->IsActive()) {
        fill = tint_color(fill, B_DARKEN_1_TINT);
        light = tint_color(light, B_DARKEN_1_TINT);
        dark = tint_color(dark, B_DARKEN_1_TINT);
    }
    StrokeLeftTop(this, frame, light);
    StrokeRightBottom(this, frame, dark);
    frame.InsetBy(1, 1);
    FillWith(this, frame, fill);
}

// The loop keeps the window's thread until the button is released, so the box draws itself.
void QBCloseButton::MouseDown(BPoint where) {
    if (!Window()->IsActive()) {
        Window()->Activate(true);
        return;
    }

    uint32 buttons = 0;
    GetMouse(&where, &buttons, true);
    while (buttons != 0) {
        SetPressed(Bounds().Contains(where));
        snooze(kPollInterval);
        GetMouse(&where, &buttons, true);
    }

    fPressed = false;
    Draw(Bounds());
    Flush();
    if (Bounds().Contains(where))
        be_app->PostMessage(B_QUIT_REQUESTED);
}

void QBCloseButton::WindowActivated(bool) {
    Invalidate();
}

void QBCloseButton::SetPressed(bool pressed) {
    if (pressed == fPressed)
        return;
    fPressed = pressed;
    Draw(Bounds());
    Flush();
}

#include "quillbar/bar/widgets/CloseButton.h"

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/window/Window.h"
#include "kits/kernel/OS.h"
#include "quillbar/bar/widgets/Bevel.h"

namespace {

constexpr bigtime_t kPollInterval = 20'000;

} // namespace

QBCloseButton::QBCloseButton(BRect frame)
    : BView(frame, "qb_close_button", B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW) {}

void QBCloseButton::AttachedToWindow() {
    if (Parent())
        SetViewColor(Parent()->ViewColor());
    BView::AttachedToWindow();
}

void QBCloseButton::Draw(BRect) {
    BRect frame = Bounds();
    const Bevel plain = BevelOf(ViewColor());
    StrokeLeftTop(this, frame, plain.dark);
    StrokeRightBottom(this, frame, plain.light);
    frame.InsetBy(1, 1);

    const bool isDim = fPressed || !Window()->IsActive();
    Bevel inner = BevelOf(ViewColor(), isDim ? B_DARKEN_1_TINT : B_NO_TINT);
    if (fPressed)
        inner = {inner.fill, plain.dark, plain.light};
    StrokeLeftTop(this, frame, inner.light);
    StrokeRightBottom(this, frame, inner.dark);
    frame.InsetBy(1, 1);
    FillWith(this, frame, inner.fill);
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

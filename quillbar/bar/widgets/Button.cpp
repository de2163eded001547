#include "quillbar/bar/widgets/Button.h"

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/Messenger.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/Window.h"
#include "quillbar/bar/widgets/Bevel.h"
#include "quillbar/base/Commands.h"

void QBButton::MessageReceived(BMessage* message) {
    if (message->what == B_MIME_DATA && message->WasDropped())
        message->AddInt32("code", static_cast<int32>(Message()->what));
    else if (message->what != B_PASTE)
        return BButton::MessageReceived(message);
    BMessenger(Window()).SendMessage(message);
}

void QBButton::Draw(BRect) {
    const BRect bounds = Bounds();
    const float tint = fLit                    ? B_LIGHTEN_2_TINT
                       : fPressed              ? B_DARKEN_2_TINT
                       : !Window()->IsActive() ? B_DARKEN_1_TINT
                                               : B_NO_TINT;
    const auto [fill, light, dark] = BevelOf(ViewColor(), tint);
    StrokeLeftTop(this, bounds, light);
    StrokeRightBottom(this, bounds, dark);
    FillWith(this, bounds.InsetByCopy(1, 1), fill);
    if (fLit) {
        SetHighColor(ui_color(B_MENU_SELECTION_BACKGROUND_COLOR));
        StrokeRect(bounds.InsetByCopy(1, 1));
    }

    font_height metrics;
    GetFontHeight(&metrics);
    const int height = static_cast<int>(metrics.ascent + metrics.descent + metrics.leading);
    const float x = bounds.left + (bounds.Width() - StringWidth(Label())) / 2;
    const float y = (bounds.Height() + bounds.top) / 2 + (bounds.Height() - height) / 2;
    SetHighColor(rgb_color{0, 0, 0, 255});
    SetLowColor(fill);
    DrawString(Label(), BPoint(x, y));
}

void QBButton::MouseDown(BPoint) {
    fPressed = true;
    fTracking = true;
    Window()->Activate(true);
    SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS | B_NO_POINTER_HISTORY);
    Invalidate();
}

void QBButton::MouseUp(BPoint where) {
    const bool chosen = fPressed && Bounds().Contains(where);
    if (chosen)
        Invoke();
    fTracking = false;
    fPressed = false;
    Invalidate();
}

void QBButton::MouseMoved(BPoint, uint32 transit, const BMessage* dragged) {
    if (transit != B_EXITED_VIEW && transit != B_ENTERED_VIEW)
        return;
    if (dragged) {
        fLit = transit == B_ENTERED_VIEW;
        Invalidate();
        return;
    }
    if (!fTracking) {
        if (transit == B_ENTERED_VIEW) {
            BMessage message(kQBPointAt);
            message.AddInt32("code", static_cast<int32>(Message()->what));
            Messenger().SendMessage(&message);
        }
        return;
    }
    fPressed = transit == B_ENTERED_VIEW;
    Invalidate();
}

status_t QBButton::Invoke(BMessage* message) {
    return BControl::Invoke(message);
}

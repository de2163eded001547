#include "quillbar/bar/widgets/Bar.h"

#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "quillbar/bar/widgets/Bevel.h"
#include "quillbar/bar/widgets/CloseButton.h"

namespace {

constexpr float kThickness = 13;
const BRect kButtonRect(0, 0, 8, 8);
constexpr float kButtonInset = 2;

} // namespace

QBBar::QBBar()
    : BControl(BRect(0, 0, 0, 0), "qb_bar", "", new BMessage(kQBShowSettings), B_FOLLOW_NONE,
               B_WILL_DRAW) {}

void QBBar::MessageReceived(BMessage* message) {
    BControl::MessageReceived(message);
}

void QBBar::AttachedToWindow() {
    if (Parent())
        SetViewColor(Parent()->ViewColor());
    fCloseButton = new QBCloseButton(kButtonRect.OffsetByCopy(kButtonInset, kButtonInset));
    AddChild(fCloseButton);
    BControl::AttachedToWindow();
}

void QBBar::Draw(BRect) {
    BRect frame = Bounds();
    const Bevel bevel = BevelOf(ViewColor(), Window()->IsActive() ? B_NO_TINT : B_DARKEN_1_TINT);
    StrokeRightBottom(this, frame, bevel.dark);
    StrokeLeftTop(this, frame, bevel.light);
    frame.InsetBy(1, 1);
    FillWith(this, frame, bevel.fill);
}

void QBBar::MouseDown(BPoint where) {
    Window()->Activate(true);

    int32 clicks = 0;
    fButtons = 0;
    if (const BMessage* message = Window()->CurrentMessage()) {
        message->FindInt32("buttons", &fButtons);
        message->FindInt32("clicks", &clicks);
    }
    if (fButtons == B_PRIMARY_MOUSE_BUTTON) {
        if (clicks == 2) {
            DblClicked(where);
        } else {
            SetMouseEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
            fDragging = true;
            fGrabPoint = where;
        }
    }
    BControl::MouseDown(where);
}

void QBBar::MouseUp(BPoint) {
    fDragging = false;
    fGrabPoint = B_ORIGIN;
    if (fButtons == B_SECONDARY_MOUSE_BUTTON)
        Invoke();
}

void QBBar::MouseMoved(BPoint where, uint32, const BMessage*) {
    if (!fDragging)
        return;
    // `where` counts from where the window stood when the pointer moved, which may lie behind.
    BPoint pointer = ConvertToScreen(where);
    if (const BMessage* message = Window()->CurrentMessage())
        message->FindPoint("screen_where", &pointer);
    Window()->MoveTo(pointer - fGrabPoint);
    Sync();
}

void QBBar::SetViewColor(rgb_color color) {
    if (fCloseButton) {
        fCloseButton->SetViewColor(color);
        fCloseButton->Invalidate();
    }
    BControl::SetViewColor(color);
}

void QBBar::SetAlign(QBAlign align) {
    fAlign = align;
    const BRect window = Window()->Bounds();
    if (fAlign == kQBAlignHorizontal)
        ResizeTo(kThickness, window.Height());
    else
        ResizeTo(window.Width(), kThickness);
    Window()->SetGrip(Frame());
}

void QBBar::DblClicked(BPoint) {
    Window()->Minimize(true);
}

QBSpareRoom::QBSpareRoom(BRect frame, QBBar& bar)
    : BView(frame, "qb_spare_room", B_FOLLOW_ALL_SIDES, B_WILL_DRAW)
    , fBar(bar) {}

// Both begin at the window's left top, so places are the same in both.
void QBSpareRoom::MouseDown(BPoint where) {
    fBar.MouseDown(where);
    SetMouseEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
}

void QBSpareRoom::MouseUp(BPoint where) {
    fBar.MouseUp(where);
}

void QBSpareRoom::MouseMoved(BPoint where, uint32 transit, const BMessage* message) {
    fBar.MouseMoved(where, transit, message);
}

#include <cmath>

#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "quillbar/about/URLView.h"

namespace {

constexpr float kDragDistance = 10;

} // namespace

uint32 URLView::PressedButtons() const {
    const BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    return message ? static_cast<uint32>(message->GetInt32("buttons", 0)) : 0;
}

void URLView::MouseDown(BPoint where) {
    if (!fEnabled || !GetTextRect().Contains(where))
        return;
    ShowColor(fClickColor);
    fPressed = true;
    SetMouseEventMask(B_POINTER_EVENTS);
    const float room = Frame().Width() - StringWidth(Text());
    fDragPoint = where;
    if (Alignment() == B_ALIGN_RIGHT)
        fDragPoint.x -= room;
    else if (Alignment() == B_ALIGN_CENTER)
        fDragPoint.x -= room / 2;
    if (PressedButtons() == B_SECONDARY_MOUSE_BUTTON)
        fPopupPending = true;
}

void URLView::MouseMoved(BPoint where, uint32 transit, const BMessage*) {
    if (!fEnabled || !Window()->IsActive())
        return;
    const uint32 buttons = PressedButtons();
    const bool isOverText = !fDragStarted && GetTextRect().Contains(where);
    switch (transit) {
    case B_ENTERED_VIEW:
        if (!isOverText)
            break;
        if (fPressed)
            ShowColor(fClickColor);
        Hover(buttons);
        break;
    case B_INSIDE_VIEW:
        if (isOverText)
            MovedOverText(where, buttons);
        else if (!fDragStarted)
            MovedBesideText();
        break;
    case B_EXITED_VIEW:
        MovedOut(buttons);
        break;
    default:
        break;
    }
}

void URLView::Hover(uint32 buttons) {
    if (buttons != 0)
        return;
    SetViewCursor(fLinkCursor);
    if (fPressed || !fHoverEnabled)
        return;
    ShowColor(fHoverColor);
    fHovering = true;
}

void URLView::MovedOverText(BPoint where, uint32 buttons) {
    Hover(buttons);
    if (!fPressed)
        return;
    if (!fDraggable) {
        ShowColor(fClickColor);
        return;
    }
    const BPoint moved = where - fDragPoint;
    if (std::abs(moved.x) > kDragDistance || std::abs(moved.y) > kDragDistance) {
        StartDrag();
        ShowColor(fColor);
    }
}

void URLView::MovedBesideText() {
    SetViewCursor(B_HAND_CURSOR);
    if (!fPressed) {
        StopHovering();
        return;
    }
    ShowColor(fColor);
    if (fDraggable)
        StartDrag();
}

void URLView::MovedOut(uint32 buttons) {
    SetViewCursor(B_HAND_CURSOR);
    if (fPressed && !fDragStarted) {
        ShowColor(fColor);
        if (fDraggable)
            StartDrag();
    } else if (buttons == 0) {
        StopHovering();
    }
}

void URLView::StopHovering() {
    if (!fHovering)
        return;
    ShowColor(fColor);
    fHovering = false;
}

void URLView::MouseUp(BPoint where) {
    if (!fEnabled)
        return;
    const bool isOverText = GetTextRect().Contains(where);
    if (fPopupPending && isOverText)
        ChooseFromMenu(where);
    else if (fPressed && isOverText && !fDragStarted && !fPopupPending)
        LaunchURL();
    fPressed = false;
    fDragStarted = false;
    fPopupPending = false;
    if (isOverText && fHoverEnabled)
        SetHighColor(fHoverColor);
    else if (!fHovering)
        SetHighColor(fColor);
    Redraw();
}

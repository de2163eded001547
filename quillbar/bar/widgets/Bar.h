#pragma once

#include "kits/interface/window/Control.h"
#include "quillbar/base/Commands.h"

class QBCloseButton;

// The drag strip of the bar window: dragging it moves the window, a double click minimises it, a
// click with the secondary button asks for the settings menu. It carries the close box.
class QBBar : public BControl {
public:
    QBBar();

    void MessageReceived(BMessage* message) override;
    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void MouseUp(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* message) override;

    // The close box takes the same colour.
    void SetViewColor(rgb_color color) override;

    // Lies along the window's left edge if `align` is horizontal, along its top edge otherwise.
    // The window has its new size already.
    void SetAlign(QBAlign align);

    void DblClicked(BPoint where);

private:
    QBCloseButton* fCloseButton = nullptr;
    QBAlign fAlign = kQBAlignVertical;
    BPoint fGrabPoint = B_ORIGIN;
    bool fDragging = false;
    int32 fButtons = 0;
};

// Fills the window behind everything else. It is seen where a window manager gives the window more
// room than the bar asked for, and handles like the strip there. The window deletes it and `bar`.
class QBSpareRoom : public BView {
public:
    QBSpareRoom(BRect frame, QBBar& bar);

    void MouseDown(BPoint where) override;
    void MouseUp(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* message) override;

private:
    QBBar& fBar;
};

#pragma once

#include "kits/interface/controls/Button.h"

// A folder button of the bar: bevelled, flat, darker while it is pressed or its window inactive.
class QBButton : public BButton {
public:
    using BButton::BButton;

    // A dropped colour goes on to the window, and a dropped link with the "code" of the folder.
    void MessageReceived(BMessage* message) override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void MouseUp(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* message) override;
    // At once: the base's moment of looking pressed would not be seen, and the menu would wait.
    status_t Invoke(BMessage* message = nullptr) override;

private:
    bool fPressed = false;
    bool fTracking = false;
    bool fLit = false; // a link is dragged over it
};

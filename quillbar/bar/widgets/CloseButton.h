#pragma once

#include "kits/interface/window/View.h"

// The close box of the bar: releasing the mouse inside it asks the application to quit. The first
// click on an inactive bar only activates it.
class QBCloseButton : public BView {
public:
    explicit QBCloseButton(BRect frame);

    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void WindowActivated(bool active) override;

private:
    void SetPressed(bool pressed);

    bool fPressed = false;
};

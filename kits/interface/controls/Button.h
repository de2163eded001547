#pragma once

#include "kits/interface/window/Control.h"

// A push button. It is invoked when the primary mouse button is released over it after it was
// pressed there, and by Space, or Enter where it is its window's default button. Its value is
// B_CONTROL_ON while it looks pressed.
class BButton : public BControl {
public:
    BButton(BRect frame, const char* name, const char* label, BMessage* message,
            uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
            uint32 flags = B_WILL_DRAW | B_NAVIGABLE);

    // Enter presses the default button of a window, which has one at most; it has a frame.
    virtual void MakeDefault(bool isDefault);

    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;
    void MouseUp(BPoint where) override;
    // Makes it as wide and high as the label needs, with the room for a default button's frame.
    void ResizeToPreferred();

private:
    void DrawFace(BRect face);
    void DrawLabel(BRect face);

    bool fBecomesDefault = false; // once it is in a window
};

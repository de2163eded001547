#pragma once

#include <memory>
#include <string>

#include "kits/interface/window/Control.h"

class TextField;

// A label and, to the right of it, a field for one line of text that the user can edit. Its message
// is sent when Enter is pressed in the field or the field loses the focus, if the text was edited
// since the last time.
//
// The focus goes to the field: reached by the keyboard all of its text is selected. The secondary
// mouse button opens a menu with what can be done to the text.
class BTextControl : public BControl {
public:
    // `message` belongs to the control. The field takes the right half of the frame, or all of it
    // without a label.
    BTextControl(BRect frame, const char* name, const char* label, const char* text,
                 BMessage* message, uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
                 uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
    ~BTextControl() override;

    // Bytes that are not UTF-8 are shown as replacement marks and stay as they are as long as they
    // are not edited. The same text again changes nothing; another one cannot be undone.
    virtual void SetText(const char* text);
    // Valid until the text changes.
    const char* Text() const;

    // The field, for selecting and measuring. It belongs to the control.
    TextField* TextView() const { return fField; }

    // Where the field begins, from the control's left edge; the label has the room before it.
    virtual void SetDivider(float position);
    float Divider() const { return fDivider; }

    void SetEnabled(bool enabled) override;
    // Gives the field the focus, or takes it.
    void MakeFocus(bool focus = true) override;
    void SetFont(const BFont* font, uint32 mask = B_FONT_ALL) override;

    void Draw(BRect updateRect) override;
    // A press on the label gives the field the focus.
    void MouseDown(BPoint where) override;
    void AttachedToWindow() override;
    void FrameResized(float width, float height) override;

private:
    friend class TextField;

    // By the field.
    void FocusChanged(bool focus);
    void Commit();

    BRect FieldFrame() const;
    void PlaceField();

    TextField* const fField;
    float fDivider;
    std::string fCommitted; // the text as the message's target knows it
};

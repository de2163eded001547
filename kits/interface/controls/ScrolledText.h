#pragma once

#include "kits/interface/text/TextView.h"

// Shows a text, and a bar to scroll it by where it is higher than this view: with the wheel, the
// bar, and the keys that the window passes on. Window's thread.
class ScrolledText : public BView {
public:
    // Belongs to this view, which places it.
    explicit ScrolledText(BTextView* text);

    // Breaks the text into lines and shows its beginning. Called when the text or the size
    // of this view has changed.
    void LayOut();

    // Scrolls by an arrow or a page, to the beginning or to the end. False for any other key, and
    // if there is nothing to scroll.
    bool ScrollByKey(char byte);

    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;
    void MouseUp(BPoint where) override;
    void MessageReceived(BMessage* message) override;

private:
    float Hidden() const; // how much higher the text is than this view
    BRect Thumb() const;
    void ScrollTo(float offset);

    BTextView* const fText;
    float fOffset = 0; // of the text, upwards
    bool fIsDragged = false;
    float fGrab = 0; // where the thumb was taken hold of, from its top
};

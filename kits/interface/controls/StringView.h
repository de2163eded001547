#pragma once

#include <string>

#include "kits/interface/window/View.h"

// A line of text that cannot be edited.
class BStringView : public BView {
public:
    BStringView(BRect frame, const char* name, const char* text,
                uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP, uint32 flags = B_WILL_DRAW);

    const char* Text() const { return fText.c_str(); }
    void SetText(const char* text);
    void SetAlignment(alignment flag);
    alignment Alignment() const { return fAlignment; }

    // Takes the parent's view colour.
    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;

private:
    std::string fText;
    alignment fAlignment = B_ALIGN_LEFT;
};

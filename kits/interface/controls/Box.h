#pragma once

#include <string>

#include "kits/interface/window/View.h"

enum border_style {
    B_FANCY_BORDER = 1, // a groove
};

// A border with a label in its upper line, around the views that belong together.
class BBox : public BView {
public:
    explicit BBox(BRect frame, const char* name = nullptr,
                  uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
                  uint32 flags = B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE_JUMP,
                  border_style border = B_FANCY_BORDER);

    // In the view's font, the bold one unless another is set. Null or empty for none.
    void SetLabel(const char* label);
    const char* Label() const { return fLabel.c_str(); }

    // Takes the parent's view colour.
    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;

private:
    void StrokeBorder(BRect frame, float labelEnd);

    std::string fLabel;
};

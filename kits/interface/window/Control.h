#pragma once

#include <string>

#include "kits/app/Invoker.h"
#include "kits/interface/window/View.h"

enum : int32 {
    B_CONTROL_OFF = 0,
    B_CONTROL_ON = 1,
};

// Of the frame or the line that shows the focus.
inline constexpr rgb_color kFocusColor{0, 0, 229, 255};

// A view with a label and a value that sends a message when it is used. Its target is its window
// unless another one was set.
class BControl : public BView, public BInvoker {
public:
    // `message` belongs to the control.
    BControl(BRect frame, const char* name, const char* label, BMessage* message,
             uint32 resizingMode, uint32 flags);

    // Takes the target, and the parent's view colour.
    void AttachedToWindow() override;
    void DetachedFromWindow() override;
    // Has the control get the release of the button wherever it happens.
    void MouseDown(BPoint where) override;
    // Space invokes it, and Enter if the window has no default button.
    void KeyDown(const char* bytes, int32 numBytes) override;
    void MakeFocus(bool focus = true) override;

    // Each redraws the control if it changes something.
    virtual void SetLabel(const char* label);
    const char* Label() const { return fLabel.c_str(); }
    virtual void SetValue(int32 value);
    int32 Value() const { return fValue; }
    virtual void SetEnabled(bool enabled);
    bool IsEnabled() const { return fEnabled; }

    // Sends `message`, or the control's own, to the target, with "when" (int64), "source" (pointer,
    // the control) and "be:value" (int32) added. B_BAD_VALUE if there is no message.
    status_t Invoke(BMessage* message = nullptr) override;

protected:
    bool IsTracking() const { return fTracking; }
    void SetTracking(bool tracking) { fTracking = tracking; }

private:
    bool CanTakeFocus() const override { return fEnabled && BView::CanTakeFocus(); }

    std::string fLabel;
    int32 fValue = B_CONTROL_OFF;
    bool fEnabled = true;
    bool fTracking = false;
};

// Draws `label`, cut to `room`, in `font` instead of the view's own. Window's thread.
void DrawLabel(BView& view, const BFont& font, std::string label, float room, BPoint baseline);

// One pixel along the edges of `rect`, in the view's coordinates: the right and lower ones in one
// colour, the others, with the left-bottom and right-top corners left out, in the other. The view's
// high colour is changed. Window's thread, as all drawing.
void StrokeBevel(BView& view, BRect rect, rgb_color leftTop, rgb_color rightBottom);

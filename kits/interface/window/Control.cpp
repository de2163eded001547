#include "kits/interface/window/Control.h"

#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "kits/kernel/OS.h"

BControl::BControl(BRect frame, const char* name, const char* label, BMessage* message,
                   uint32 resizingMode, uint32 flags)
    : BView(frame, name, resizingMode, flags)
    , BInvoker(message, BMessenger())
    , fLabel(label ? label : "") {}

void BControl::AttachedToWindow() {
    if (Parent() != nullptr)
        SetViewColor(Parent()->ViewColor());
    if (!Messenger().IsValid())
        SetTarget(Window());
    BView::AttachedToWindow();
}

void BControl::DetachedFromWindow() {
    fTracking = false;
}

void BControl::MouseDown(BPoint) {
    SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS);
}

void BControl::KeyDown(const char* bytes, int32 numBytes) {
    const BControl* byEnter = Window() ? Window()->DefaultButton() : nullptr;
    bool isForThis = byEnter == nullptr || byEnter == this;
    bool invokes = numBytes == 1 && (bytes[0] == B_SPACE || (bytes[0] == B_ENTER && isForThis));
    if (!invokes) {
        BView::KeyDown(bytes, numBytes);
        return;
    }
    BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    bool isRepeated = message != nullptr && message->HasInt32("be:key_repeat");
    if (fEnabled && !isRepeated)
        Invoke();
}

void BControl::MakeFocus(bool focus) {
    BView::MakeFocus(focus);
    Invalidate();
}

void BControl::SetLabel(const char* label) {
    std::string changed = label ? label : "";
    if (changed == fLabel)
        return;
    fLabel = changed;
    Invalidate();
}

void BControl::SetValue(int32 value) {
    if (value == fValue)
        return;
    fValue = value;
    Invalidate();
}

void BControl::SetEnabled(bool enabled) {
    if (enabled == fEnabled)
        return;
    fEnabled = enabled;
    if (!enabled && IsFocus())
        MakeFocus(false);
    Invalidate();
}

status_t BControl::Invoke(BMessage* message) {
    BMessage* base = message ? message : Message();
    if (base == nullptr)
        return B_BAD_VALUE;
    BMessage sent(*base);
    sent.AddInt64("when", system_time());
    sent.AddPointer("source", this);
    sent.AddInt32("be:value", fValue);
    return BInvoker::Invoke(&sent);
}

void DrawLabel(BView& view, const BFont& font, std::string label, float room, BPoint baseline) {
    BFont own;
    view.GetFont(&own);
    font.TruncateString(&label, B_TRUNCATE_END, room);
    // A control may pass its font on to the views in it.
    view.BView::SetFont(&font);
    view.DrawString(label.c_str(), baseline);
    view.BView::SetFont(&own);
}

void StrokeBevel(BView& view, BRect rect, rgb_color leftTop, rgb_color rightBottom) {
    view.SetHighColor(rightBottom);
    view.StrokeLine(rect.RightTop(), rect.RightBottom());
    view.StrokeLine(rect.LeftBottom());
    view.SetHighColor(leftTop);
    view.StrokeLine(rect.LeftBottom() - BPoint(0, 1), rect.LeftTop());
    view.StrokeLine(rect.RightTop() - BPoint(1, 0));
}

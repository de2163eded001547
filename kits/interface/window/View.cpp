#include "kits/interface/window/View.h"

#include <algorithm>
#include <cmath>

#include "kits/app/Message.h"
#include "kits/interface/window/KeyWatchers.h"
#include "kits/interface/window/WindowState.h"

namespace {

float Whole(float coordinate) {
    return std::floor(coordinate + 0.5f);
}

BRect WholeRect(BRect rect) {
    float left = Whole(rect.left);
    float top = Whole(rect.top);
    return {left, top, left + Whole(rect.Width()), top + Whole(rect.Height())};
}

// Where two opposite sides of a view go when its parent grows by `delta`.
void Follow(uint32 mode, uint32 farSide, uint32 bothSides, uint32 center, float delta,
            float* nearEdge, float* farEdge) {
    if (mode == bothSides) {
        *farEdge += delta;
    } else if (mode == farSide || mode == center) {
        float by = mode == center ? Whole(delta / 2) : delta;
        *nearEdge += by;
        *farEdge += by;
    }
}

} // namespace

BView::BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
    : BHandler(name)
    , fFrame(WholeRect(frame))
    , fResizingMode(resizingMode)
    , fFlags(flags) {}

BView::~BView() {
    RemoveSelf();
    while (!fChildren.empty()) {
        BView* child = fChildren.back();
        child->RemoveSelf();
        delete child;
    }
}

void BView::KeyDown(const char*, int32) {
    BMessage* message = fWindow ? fWindow->CurrentMessage() : nullptr;
    if (message != nullptr && !IsWatching() && !fWindow->fState->KeyDownInWindow(*message))
        fWindow->MessageReceived(message);
}

void BView::KeyUp(const char*, int32) {
    if (fWindow != nullptr && fWindow->CurrentMessage() != nullptr && !IsWatching())
        fWindow->MessageReceived(fWindow->CurrentMessage());
}

void BView::MessageReceived(BMessage* message) {
    if (!IsWatching())
        BHandler::MessageReceived(message);
}

void BView::AddChild(BView* child, BView* before) {
    if (child == nullptr || child->fParent != nullptr)
        return;
    fChildren.insert(std::find(fChildren.begin(), fChildren.end(), before), child);
    child->fParent = this;
    if (fWindow == nullptr)
        return;
    child->Attach(fWindow);
    child->Invalidate();
}

bool BView::RemoveChild(BView* child) {
    auto found = std::find(fChildren.begin(), fChildren.end(), child);
    if (found == fChildren.end())
        return false;
    if (fWindow != nullptr) {
        child->Invalidate();
        child->Detach();
        child->DetachAll();
    }
    fChildren.erase(std::find(fChildren.begin(), fChildren.end(), child));
    child->fParent = nullptr;
    return true;
}

BView* BView::ChildAt(int32 index) const {
    return index >= 0 && index < CountChildren() ? fChildren[static_cast<size_t>(index)] : nullptr;
}

BView* BView::Parent() const {
    bool isTop = fWindow != nullptr ? fParent == &fWindow->fState->root
                                    : fParent != nullptr && fParent->fBitmap != nullptr;
    return isTop ? nullptr : fParent;
}

void BView::Attach(BWindow* window) {
    fWindow = window;
    window->AddHandler(this);
    window->fState->ClipChanged();
    if (Parent() != nullptr)
        SetNextHandler(Parent());
    if (fEventMask != 0)
        SetEventMask(fEventMask);
    AttachedToWindow();
    for (size_t i = 0; i < fChildren.size(); i++) {
        // A child that AttachedToWindow() added is attached already.
        if (fChildren[i]->fWindow == nullptr)
            fChildren[i]->Attach(window);
    }
}

void BView::Detach() {
    DetachedFromWindow();
    for (size_t i = 0; i < fChildren.size(); i++)
        fChildren[i]->Detach();
}

void BView::DetachAll() {
    for (size_t i = 0; i < fChildren.size(); i++)
        fChildren[i]->DetachAll();
    fWindow->fState->Forget(*this);
    fWindow->RemoveHandler(this);
    fWindow = nullptr;
}

void BView::MoveTo(float x, float y) {
    SetFrame(fFrame.OffsetToCopy(BPoint(Whole(x), Whole(y))));
}

void BView::ResizeTo(float width, float height) {
    SetFrame({fFrame.left, fFrame.top, fFrame.left + Whole(std::max(width, 0.0f)),
              fFrame.top + Whole(std::max(height, 0.0f))});
}

// A view that stays where it is keeps what is drawn of it, unless it asks for a full update.
void BView::SetFrame(BRect frame) {
    BRect before = fFrame;
    if (frame == before)
        return;
    bool hasMoved = frame.LeftTop() != before.LeftTop();
    float deltaWidth = frame.Width() - before.Width();
    float deltaHeight = frame.Height() - before.Height();
    fFrame = frame;
    if (fWindow != nullptr)
        fWindow->fState->ClipChanged();
    for (BView* child : fChildren)
        child->ParentResized(deltaWidth, deltaHeight);

    if (fWindow != nullptr && fParent != nullptr && !IsHidden()) {
        ClipRegion changed(before);
        changed.Include(frame);
        if (!hasMoved && (fFlags & B_FULL_UPDATE_ON_RESIZE) == 0)
            changed.Exclude(before & frame);
        for (const BRect& rect : changed.Rects())
            fParent->Invalidate(rect);
    }
    if ((fFlags & B_FRAME_EVENTS) != 0 && (deltaWidth != 0 || deltaHeight != 0))
        FrameResized(frame.Width(), frame.Height());
}

void BView::ParentResized(float deltaWidth, float deltaHeight) {
    BRect frame = fFrame;
    Follow(fResizingMode & 0x0f0f, B_FOLLOW_RIGHT, B_FOLLOW_LEFT_RIGHT, B_FOLLOW_H_CENTER,
           deltaWidth, &frame.left, &frame.right);
    Follow(fResizingMode & 0xf0f0, B_FOLLOW_BOTTOM, B_FOLLOW_TOP_BOTTOM, B_FOLLOW_V_CENTER,
           deltaHeight, &frame.top, &frame.bottom);
    SetFrame(frame);
}

BPoint BView::ConvertToScreen(BPoint point) const {
    BPoint inWindow = point + OriginInWindow();
    return fWindow ? fWindow->ConvertToScreen(inWindow) : inWindow;
}

BPoint BView::ConvertFromScreen(BPoint point) const {
    return (fWindow ? fWindow->ConvertFromScreen(point) : point) - OriginInWindow();
}

BRect BView::ConvertToScreen(BRect rect) const {
    return {ConvertToScreen(rect.LeftTop()), ConvertToScreen(rect.RightBottom())};
}

void BView::GetClippingRegion(ClipRegion* region) const {
    *region = ClipRegion();
    if (fWindow == nullptr || IsHidden())
        return;
    const BPoint origin = OriginInWindow();
    const ClipRegion inWindow = fWindow->fState->VisibleRegion(*this);
    for (const BRect& rect : inWindow.Rects())
        region->Include(rect.OffsetByCopy(-origin.x, -origin.y));
}

void BView::Hide() {
    Invalidate();
    fHideCount++;
    if (fWindow != nullptr)
        fWindow->fState->ClipChanged();
}

void BView::Show() {
    fHideCount--;
    if (fWindow != nullptr)
        fWindow->fState->ClipChanged();
    Invalidate();
}

bool BView::IsHidden() const {
    return fHideCount > 0 || (fParent != nullptr && fParent->IsHidden());
}

void BView::MakeFocus(bool focus) {
    if (fWindow == nullptr || focus == IsFocus())
        return;
    BView*& current = fWindow->fState->focus;
    if (!focus) {
        current = nullptr;
        return;
    }
    if (current != nullptr)
        current->MakeFocus(false);
    current = this;
}

bool BView::IsFocus() const {
    return fWindow != nullptr && fWindow->fState->focus == this;
}

void BView::SetViewCursor(const BCursor& cursor) {
    fCursor = cursor;
    if (fWindow != nullptr)
        fWindow->fState->ShowCursor();
}

void BView::SetFont(const BFont* font, uint32 mask) {
    if (font != nullptr)
        fFont.SetTo(*font, mask);
}

void BView::GetMouse(BPoint* where, uint32* buttons, bool checkMessageQueue) {
    BPoint place;
    uint32 down = 0;
    if (fWindow != nullptr)
        fWindow->fState->GetMouse(*this, &place, &down, checkMessageQueue);
    if (where != nullptr)
        *where = place - OriginInWindow();
    if (buttons != nullptr)
        *buttons = down;
}

status_t BView::SetEventMask(uint32 mask, uint32) {
    fEventMask = mask;
    if (fWindow == nullptr)
        return B_OK;
    // A message to the window: the display is asked when the window has been painted.
    if (mask & B_KEYBOARD_EVENTS)
        fWindow->PostMessage(kWatchKeys, this);
    else
        KeyWatchers::Shared().Remove(BMessenger(this));
    return B_OK;
}

// A key that is handled came by the event mask.
bool BView::IsWatching() const {
    return fWindow != nullptr && fWindow->fState->watching == this;
}

status_t BView::SetMouseEventMask(uint32 mask, uint32) {
    if (fWindow == nullptr || fWindow->fState->tracking != this)
        return B_ERROR;
    fWindow->fState->isMasked = (mask & B_POINTER_EVENTS) != 0;
    return B_OK;
}

void BView::ActivateAll(bool active) {
    WindowActivated(active);
    for (size_t i = 0; i < fChildren.size(); i++)
        fChildren[i]->ActivateAll(active);
}

BView* BView::DeepestAt(BPoint where) {
    if (fHideCount > 0 || !Bounds().Contains(where))
        return nullptr;
    for (auto child = fChildren.rbegin(); child != fChildren.rend(); ++child) {
        if (BView* view = (*child)->DeepestAt((*child)->ConvertFromParent(where)))
            return view;
    }
    return this;
}

BPoint BView::OriginInWindow() const {
    BPoint origin;
    for (const BView* view = this; view != nullptr; view = view->fParent)
        origin += view->fFrame.LeftTop();
    return origin;
}

// In window coordinates; not valid if nothing of it is inside its parents.
BRect BView::VisibleRect() const {
    BRect rect = Bounds();
    const BView* view = this;
    for (; view->fParent != nullptr; view = view->fParent)
        rect = view->ConvertToParent(rect) & view->fParent->Bounds();
    return rect;
}

#include "kits/interface/window/Window.h"

#include <utility>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/MessageFilter.h"
#include "kits/app/MessageQueue.h"
#include "kits/interface/window/Control.h"
#include "kits/interface/window/DraggedFile.h"
#include "kits/interface/window/WindowRoster.h"
#include "kits/interface/window/WindowState.h"

namespace {

// A place of the pointer that it has left already is of no use to anyone.
filter_result DropOldMoves(BMessage*, BHandler** target, BMessageFilter*) {
    BMessageQueue* queue = (*target)->Looper()->MessageQueue();
    queue->Lock();
    BMessage* next = queue->FindMessage(0);
    bool isOld = next != nullptr && next->what == B_MOUSE_MOVED;
    queue->Unlock();
    return isOld ? B_SKIP_MESSAGE : B_DISPATCH_MESSAGE;
}

} // namespace

BWindow::BWindow(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
                 uint32 workspaces)
    : BLooper(title)
    , fState(std::make_unique<State>(this, frame, title, look, feel, flags, workspaces)) {
    fState->root.fWindow = this;
    AddCommonFilter(new BMessageFilter(B_MOUSE_MOVED, DropOldMoves));
    WindowRoster::Shared().Add(this);
}

BWindow::~BWindow() {
    WindowRoster::Shared().Remove(this);
    while (BView* child = ChildAt(0)) {
        child->RemoveSelf();
        delete child;
    }
}

void BWindow::AddChild(BView* child, BView* before) {
    fState->root.AddChild(child, before);
}

bool BWindow::RemoveChild(BView* child) {
    return fState->root.RemoveChild(child);
}

BView* BWindow::ChildAt(int32 index) const {
    return fState->root.ChildAt(index);
}

BView* BWindow::FindView(BPoint where) const {
    return fState->ViewAt(where);
}

void BWindow::Show() {
    if (!Lock())
        return;
    if (--fState->hideCount == 0) {
        if (fState->scale != DisplayScale())
            fState->FollowSettings();
        if (!std::exchange(fState->hasShown, true))
            fState->BringInside();
        UpdateIfNeeded();
        fState->host->Show();
        if (!fState->hasRun)
            Run();
    }
    Unlock();
}

void BWindow::Hide() {
    if (!Lock())
        return;
    if (fState->hideCount++ == 0)
        fState->host->Hide();
    PostMessage(kPressTaken);
    Unlock();
}

bool BWindow::IsHidden() const {
    return !fState->IsVisible();
}

thread_id BWindow::Run() {
    fState->hasRun = true;
    return BLooper::Run();
}

void BWindow::Minimize(bool minimize) {
    fState->host->SetMinimized(minimize);
}

bool BWindow::IsMinimized() const {
    return fState->isMinimized;
}

void BWindow::Activate(bool active) {
    if (active && (fState->flags & B_AVOID_FOCUS) == 0)
        fState->host->Activate();
}

bool BWindow::IsActive() const {
    return fState->isActive && !fState->isActivating;
}

BRect BWindow::Frame() const {
    return fState->Frame();
}

BRect BWindow::Bounds() const {
    return fState->Bounds();
}

void BWindow::MoveTo(float x, float y) {
    fState->SetFrame(BPoint(x, y), fState->width, fState->height);
}

void BWindow::ResizeTo(float width, float height) {
    fState->SetFrame(fState->place, width, height);
}

void BWindow::SetGrip(BRect grip) {
    fState->grip = grip;
}

void BWindow::AcceptLinks() {
    if (fState->host)
        fState->host->AcceptLinks();
}

BPoint BWindow::ConvertToScreen(BPoint point) const {
    return point + fState->place;
}

BPoint BWindow::ConvertFromScreen(BPoint point) const {
    return point - fState->place;
}

BRect BWindow::ConvertToScreen(BRect rect) const {
    return rect.OffsetByCopy(fState->place);
}

status_t BWindow::SetFeel(window_feel feel) {
    if (feel != B_NORMAL_WINDOW_FEEL && feel != B_FLOATING_ALL_WINDOW_FEEL)
        return B_BAD_VALUE;
    fState->feel = feel;
    fState->host->SetFloating(feel == B_FLOATING_ALL_WINDOW_FEEL);
    return B_OK;
}

void BWindow::SetWorkspaces(uint32 workspaces) {
    if (workspaces == fState->workspaces)
        return;
    fState->workspaces = workspaces;
    fState->host->SetAllDesktops(workspaces == B_ALL_WORKSPACES);
}

void BWindow::SetDefaultButton(BControl* button) {
    BControl* before = std::exchange(fState->defaultButton, button);
    for (BControl* changed : {before, button}) {
        if (changed != nullptr && before != button)
            changed->Invalidate();
    }
}

BControl* BWindow::DefaultButton() const {
    return fState->defaultButton;
}

void BWindow::UpdateIfNeeded() {
    fState->Update();
    fState->Present();
}

void BWindow::UpdateHidden() {
    const int32 hides = std::exchange(fState->hideCount, 0);
    UpdateIfNeeded();
    fState->hideCount = hides;
    fState->canvas.reset();
    fState->ClipChanged();
}

void BWindow::Validate() {
    fState->update = ClipRegion();
}

void BWindow::Flush() const {
    fState->Present();
}

void BWindow::Sync() const {
    fState->Present();
    host::Display::Shared()->Sync();
}

void BWindow::Quit() {
    if (fState->host)
        fState->host->Hide();
    BLooper::Quit();
}

void BWindow::DispatchMessage(BMessage* message, BHandler* handler) {
    if (handler != this) {
        auto* view = dynamic_cast<BView*>(handler);
        if (view == nullptr || !fState->WatchedKeyChanged(*view, *message))
            BLooper::DispatchMessage(message, handler);
        return;
    }
    switch (message->what) {
    case B_MOUSE_DOWN:
        // A window manager activates first and passes the press on afterwards.
        fState->isActivating = message->GetInt64("when", 0) < fState->activeSince;
        fState->MouseDown(*message);
        fState->isActivating = false;
        break;
    case B_MOUSE_UP:
        fState->MouseUp(*message);
        break;
    case B_MOUSE_MOVED:
        fState->MouseMoved(*message);
        break;
    case kPressTaken:
        fState->EndPress();
        break;
    case kPointerLeft:
        fState->MoveOver(nullptr, fState->lastWhere);
        break;
    case kColorDropped:
        fState->ColorDropped(*message);
        break;
    case kLinkDragged:
        fState->LinkDragged(*message);
        break;
    case kLinkDropped:
        fState->LinkDropped(*message);
        break;
    case kSaveDragged:
        if (const std::shared_ptr<DraggedFile> file = fState->draggedFile)
            file->Save(*this);
        break;
    case B_MOUSE_WHEEL_CHANGED:
        fState->WheelTurned(*message);
        break;
    case B_KEY_DOWN:
    case B_KEY_UP:
    case B_UNMAPPED_KEY_DOWN:
    case B_UNMAPPED_KEY_UP:
    case B_MODIFIERS_CHANGED:
        fState->KeyChanged(*message);
        break;
    case B_WINDOW_ACTIVATED:
        fState->Activated(message->GetBool("active"), message->GetInt64("when", 0));
        break;
    case B_MINIMIZE:
        fState->isMinimized = message->GetBool("minimize");
        if (fState->isMinimized)
            fState->EndPress();
        break;
    case B_WORKSPACES_CHANGED:
        WorkspacesChanged(static_cast<uint32>(message->GetInt32("old", 0)),
                          static_cast<uint32>(message->GetInt32("new", 0)));
        break;
    case kFrameChanged:
        fState->TakeFrame({message->GetInt32("left", 0), message->GetInt32("top", 0),
                           message->GetInt32("right", 1), message->GetInt32("bottom", 1)});
        break;
    case kBringInside:
        fState->BringInside();
        break;
    case kSettingsChanged:
        fState->FollowSettings();
        break;
    default:
        BLooper::DispatchMessage(message, handler);
    }
}

status_t BWindow::GrabInput(bigtime_t timeout) {
    const status_t status = fState->host->GrabInput(timeout);
    if (status == B_OK)
        WindowRoster::Shared().PointerTaken();
    return status;
}

void BWindow::ReleaseInput() {
    fState->host->ReleaseInput();
}

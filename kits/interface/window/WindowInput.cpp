#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <utility>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/MessageQueue.h"
#include "kits/interface/window/Control.h"
#include "kits/interface/window/DroppedLink.h"
#include "kits/interface/window/KeyWatchers.h"
#include "kits/interface/window/WindowState.h"
#include "kits/kernel/OS.h"

namespace {

constexpr bigtime_t kReleaseDeadline = 200'000;

bool IsMouseMessage(const BMessage* message) {
    return message->what == B_MOUSE_DOWN || message->what == B_MOUSE_UP ||
           message->what == B_MOUSE_MOVED;
}

uint32 ButtonsOf(const BMessage& message) {
    return static_cast<uint32>(message.GetInt32("buttons", 0));
}

bool IsKeyMessage(const BMessage& message) {
    switch (message.what) {
    case B_KEY_DOWN:
    case B_KEY_UP:
    case B_UNMAPPED_KEY_DOWN:
    case B_UNMAPPED_KEY_UP:
    case B_MODIFIERS_CHANGED:
        return true;
    default:
        return false;
    }
}

void CallKeyHook(BView& view, BMessage& message) {
    const char* bytes = message.GetString("bytes", "");
    int32 length = static_cast<int32>(strlen(bytes));
    if (message.what == B_KEY_DOWN)
        view.KeyDown(bytes, length);
    else if (message.what == B_KEY_UP)
        view.KeyUp(bytes, length);
    else
        view.MessageReceived(&message);
}

BPoint Floored(BPoint point) {
    return {std::floor(point.x), std::floor(point.y)};
}

// The nearest group that the view is in, or null.
const BView* GroupOf(const BView* view) {
    while (view != nullptr && (view->Flags() & B_NAVIGABLE_JUMP) == 0)
        view = view->Parent();
    return view;
}

} // namespace

BView* BWindow::State::ViewAt(BPoint where) {
    BView* view = root.DeepestAt(where);
    return view == &root ? nullptr : view;
}

void BWindow::State::MouseDown(BMessage& message) {
    lastWhere = message.GetPoint("where", B_ORIGIN);
    const uint32 down = ButtonsOf(message);
    const bool isFirst = (down & (down - 1)) == 0;
    if (isFirst)
        EndPress(); // of an earlier press whose release was lost
    buttons = down;
    MoveOver(ViewAt(lastWhere), lastWhere);
    if (tracking == nullptr) {
        tracking = over;
        pressPlace = place;
    }
    // A further button belongs to the press that has begun.
    if (over != nullptr && over == tracking)
        over->MouseDown(lastWhere - over->OriginInWindow());
}

void BWindow::State::MouseUp(BMessage& message) {
    lastWhere = message.GetPoint("where", B_ORIGIN);
    buttons = ButtonsOf(message);
    if (buttons == 0)
        EndPress(lastWhere);
    else if (tracking != nullptr)
        tracking->MouseUp(lastWhere - tracking->OriginInWindow());
}

void BWindow::State::EndPress(BPoint where, const BView* poller) {
    buttons = 0;
    isMasked = false;
    BView* view = std::exchange(tracking, nullptr);
    ShowCursor();
    if (view == nullptr)
        return;
    if (view != poller)
        view->MouseUp(where - view->OriginInWindow());
    if (place != pressPlace)
        BringInside();
}

void BWindow::State::MouseMoved(BMessage& message) {
    buttons = ButtonsOf(message);
    if (buttons == 0)
        EndPress();
    BPoint where = message.GetPoint("where", B_ORIGIN);
    // A drag may have moved the window since the event: where the pointer is on the screen holds.
    if (buttons != 0) {
        where = Floored(message.GetPoint("screen_where", where + place) - place);
        message.ReplaceData("where", B_POINT_TYPE, &where, sizeof where);
    }
    lastWhere = where;
    BView* before = over;
    BView* now = ViewAt(where);
    if (now != before)
        MoveOver(now, where);
    else if (now != nullptr)
        now->MouseMoved(where - now->OriginInWindow(), B_INSIDE_VIEW, nullptr);
    if (isMasked && tracking != over && tracking != before)
        tracking->MouseMoved(where - tracking->OriginInWindow(), B_OUTSIDE_VIEW, nullptr);
}

void BWindow::State::ColorDropped(const BMessage& message) {
    const void* color = nullptr;
    ssize_t size = 0;
    if (message.FindData("color", B_RGB_COLOR_TYPE, &color, &size) != B_OK)
        return;
    BMessage paste(B_PASTE);
    paste.AddData("RGBColor", B_RGB_COLOR_TYPE, color, size);
    PostDropped(paste, message.GetPoint("where", B_ORIGIN));
}

void BWindow::State::LinkDragged(const BMessage& message) {
    const BMessage link(B_MIME_DATA);
    BPoint where = kNowhere;
    const bool isOver = message.FindPoint("where", &where) == B_OK;
    BView* before = std::exchange(dragOver, isOver ? ViewAt(where) : nullptr);
    const bool isSame = before == dragOver;
    // A hook may delete views: Forget() then clears `dragOver`.
    if (before != nullptr && !isSame)
        before->MouseMoved(where - before->OriginInWindow(), B_EXITED_VIEW, &link);
    if (dragOver != nullptr) {
        dragOver->MouseMoved(where - dragOver->OriginInWindow(),
                             isSame ? B_INSIDE_VIEW : B_ENTERED_VIEW, &link);
    }
}

void BWindow::State::LinkDropped(const BMessage& message) {
    BMessage link = LinkMessageOf(message.GetString("url", ""), message.GetString("title", ""),
                                  message.GetString("file", ""));
    PostDropped(link, message.GetPoint("where", B_ORIGIN));
}

void BWindow::State::PostDropped(BMessage& dropped, BPoint where) {
    dropped.SetWasDropped(true);
    BView* view = ViewAt(where);
    window->PostMessage(&dropped, view != nullptr ? static_cast<BHandler*>(view) : window);
}

void BWindow::State::MoveOver(BView* view, BPoint where) {
    BView* before = std::exchange(over, view);
    if (before == view)
        return;
    // A hook may delete views: Forget() then clears `over`.
    if (before != nullptr)
        before->MouseMoved(where - before->OriginInWindow(), B_EXITED_VIEW, nullptr);
    if (over != nullptr)
        over->MouseMoved(where - over->OriginInWindow(), B_ENTERED_VIEW, nullptr);
    ShowCursor();
}

void BWindow::State::ShowCursor() {
    const BView* view = isMasked ? tracking : over;
    BCursor wanted = view != nullptr ? view->fCursor : BCursor();
    if (std::exchange(cursor, wanted) == wanted)
        return;
    if (wanted.IsOwn())
        host->SetPointer(wanted.Picture());
    else if (wanted == B_I_BEAM_CURSOR)
        host->SetPointer(host::PointerShape::Text);
    else
        host->SetPointer(host::PointerShape::Arrow);
}

void BWindow::State::ShowTextCaret(const BView& field, BRect caret) {
    caret.OffsetBy(field.OriginInWindow());
    auto pixel = [this](float at) { return static_cast<int>(std::lround(at * scale)); };
    host->SetTextCaret(host::PixelRect{pixel(caret.left), pixel(caret.top), pixel(caret.right + 1),
                                       pixel(caret.bottom + 1)});
}

void BWindow::State::HideTextCaret() {
    host->SetTextCaret(std::nullopt);
}

void BWindow::State::WheelTurned(BMessage& message) {
    BView* view = ViewAt(message.GetPoint("where", B_ORIGIN));
    if (view != nullptr)
        view->MessageReceived(&message);
    else
        window->MessageReceived(&message);
}

void BWindow::State::KeyChanged(BMessage& message) {
    if (message.what == B_KEY_DOWN && HandleShortcut(root, message))
        return;
    if (focus != nullptr)
        CallKeyHook(*focus, message);
    else if (!KeyDownInWindow(message))
        window->MessageReceived(&message);
}

bool BWindow::State::WatchedKeyChanged(BView& view, BMessage& message) {
    if ((view.fEventMask & B_KEYBOARD_EVENTS) == 0)
        return false;
    if (message.what == kWatchKeys) {
        KeyWatchers::Shared().Add(BMessenger(&view));
        return true;
    }
    if (!IsKeyMessage(message))
        return false;
    // The focus view of the active window has the key by that.
    if (isActive && &view == focus)
        return true;
    watching = &view;
    CallKeyHook(view, message);
    watching = nullptr;
    return true;
}

bool BWindow::State::KeyDownInWindow(const BMessage& message) {
    if (message.what != B_KEY_DOWN)
        return false;
    const char* bytes = message.GetString("bytes", "");
    if (bytes[0] == B_ENTER && defaultButton != nullptr) {
        // A key that was held down before the window came must not answer it.
        if (!message.HasInt32("be:key_repeat") && defaultButton->IsEnabled())
            defaultButton->Invoke();
        return true;
    }
    if (bytes[0] != B_TAB)
        return false;
    auto held = static_cast<uint32>(message.GetInt32("modifiers", 0));
    FocusNext((held & B_SHIFT_KEY) != 0, (held & B_CONTROL_KEY) != 0);
    return focus != nullptr;
}

bool BWindow::State::HandleShortcut(BView& view, const BMessage& keyDown) {
    return view.HandleShortcut(keyDown) || std::ranges::any_of(view.fChildren, [&](BView* child) {
               return HandleShortcut(*child, keyDown);
           });
}

void BWindow::State::CollectNavigable(BView& view, std::vector<BView*>& found) {
    if (view.fHideCount > 0)
        return;
    if (view.CanTakeFocus())
        found.push_back(&view);
    for (BView* child : view.fChildren)
        CollectNavigable(*child, found);
}

// From the focus to the next view that can have it, or to the first one of the next group.
void BWindow::State::FocusNext(bool backwards, bool byGroup) {
    std::vector<BView*> views;
    CollectNavigable(root, views);
    if (views.empty())
        return;
    auto at = views.end();
    // A control's focus may be in a view inside it.
    for (BView* view = focus; view != nullptr && at == views.end(); view = view->fParent)
        at = std::find(views.begin(), views.end(), view);
    size_t count = views.size();
    size_t next = backwards ? count - 1 : 0;
    size_t step = backwards ? count - 1 : 1;
    if (at != views.end()) {
        auto start = static_cast<size_t>(at - views.begin());
        next = (start + step) % count;
        while (byGroup && next != start && GroupOf(views[next]) == GroupOf(views[start]))
            next = (next + step) % count;
    }
    while (byGroup && backwards && next > 0 && GroupOf(views[next - 1]) == GroupOf(views[next]))
        next--;
    views[next]->MakeFocus(true);
}

void BWindow::State::Activated(bool isActiveNow, bigtime_t when) {
    if (isActive == isActiveNow)
        return;
    activeSince = when;
    isActive = isActiveNow;
    window->WindowActivated(isActive);
    root.ActivateAll(isActive);
}

void BWindow::State::GetMouse(const BView& poller, BPoint* where, uint32* down, bool checkQueue) {
    Present();
    if (checkQueue && TakeMouseMessage(poller, where, down))
        return;
    const host::Pointer pointer = host::Display::Shared()->GetPointer();
    if (checkQueue && pointer.buttons == 0 && buttons != 0) {
        // The release has happened; its message is on its way and would come as a surprise later.
        bigtime_t end = system_time() + kReleaseDeadline;
        while (system_time() < end) {
            if (TakeMouseMessage(poller, where, down))
                return;
            snooze(1000);
        }
        EndPress(kNowhere, &poller);
    }
    *where = Floored({static_cast<float>((pointer.screenX - device.left) / scale),
                      static_cast<float>((pointer.screenY - device.top) / scale)});
    *down = pointer.buttons;
}

bool BWindow::State::TakeMouseMessage(const BView& poller, BPoint* where, uint32* down) {
    BMessageQueue* queue = window->MessageQueue();
    queue->Lock();
    std::unique_ptr<BMessage> taken;
    for (int32 i = 0; BMessage* message = queue->FindMessage(i);) {
        bool isNext = IsMouseMessage(message);
        // A move that another mouse message follows is out of date.
        if (taken && (!isNext || taken->what != B_MOUSE_MOVED))
            break;
        if (isNext) {
            queue->RemoveMessage(message);
            taken.reset(message);
        } else {
            i++;
        }
    }
    queue->Unlock();
    if (!taken)
        return false;
    lastWhere = taken->GetPoint("where", B_ORIGIN);
    buttons = ButtonsOf(*taken);
    if (buttons == 0)
        EndPress(lastWhere, &poller);
    *where = lastWhere;
    *down = buttons;
    return true;
}

void BWindow::State::Forget(BView& view) {
    ClipChanged();
    if (over == &view)
        over = nullptr;
    if (dragOver == &view)
        dragOver = nullptr;
    if (tracking == &view) {
        tracking = nullptr;
        isMasked = false;
    }
    ShowCursor();
    if (focus == &view)
        focus = nullptr;
    if (watching == &view)
        watching = nullptr;
    if (view.fEventMask & B_KEYBOARD_EVENTS)
        KeyWatchers::Shared().Remove(BMessenger(&view));
    if (defaultButton == &view)
        defaultButton = nullptr;
}

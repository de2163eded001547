#include "quillbar/bubbles/BubbleHelper.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/drawing/InterfaceDefs.h"
#include "kits/interface/text/TextView.h"
#include "kits/interface/window/PointerPresence.h"
#include "kits/interface/window/Window.h"
#include "kits/support/List.h"
#include "quillbar/bubbles/BubblePlace.h"

namespace {

constexpr int32 kQuietCycles = 6; // before the one that raises the bubble
constexpr size_t kShortestStay = 20;
const BPoint kParkingPlace(-1000, -1000);

constexpr rgb_color kPaleYellow{240, 240, 100, 255};
constexpr rgb_color kBlack{0, 0, 0, 255};

struct HelpEntry {
    BView* view;
    char* text;
};

// The same pixel of the screen is always the same point, wherever the bubble is: one read through a
// view that moves would not be, at a scale that is no whole number.
struct PointerState {
    PointerState() { get_mouse(&where, &buttons); }
    BPoint where;
    uint32 buttons;
};

bool RestsAt(BPoint where) {
    const PointerState pointer;
    return pointer.where == where && pointer.buttons == 0 && PointerPresence::Shared().IsHere();
}

} // namespace

std::atomic<int32> BubbleHelper::runcount = 0;

BubbleHelper::BubbleHelper(bigtime_t cycle_)
    : thread(B_ERROR)
    , entries(nullptr)
    , bubblewin(nullptr)
    , bubbletext(nullptr)
    , helpenabled(false)
    , cycle(cycle_)
    , entrylock("help entries")
    , restcount(0) {
    if (runcount++ != 0) {
        debugger("only one BubbleHelper instance allowed/necessary");
        return;
    }
    entries = new BList(30);
    helpenabled = true;
    thread = spawn_thread(_helper, "helper", B_NORMAL_PRIORITY, this);
    if (thread >= 0)
        resume_thread(thread);
}

BubbleHelper::~BubbleHelper() {
    if (thread >= 0) {
        ask_thread_to_stop(thread);
        wait_for_thread(thread, nullptr);
        if (LockBubble()) {
            bubblewin.load()->PostMessage(B_QUIT_REQUESTED);
            bubblewin.load()->Unlock();
        }
    }
    if (entries) {
        while (!entries->IsEmpty())
            RemoveEntry(entries->CountItems() - 1);
        delete entries;
    }
    runcount--;
}

void BubbleHelper::SetHelp(BView* view, const char* text) {
    if (!view || !entries || !entrylock.Lock())
        return;
    RemoveEntry(IndexOf(view));
    if (text)
        entries->AddItem(new HelpEntry{view, strdup(text)});
    entrylock.Unlock();
}

const char* BubbleHelper::GetHelp(BView* view) {
    if (!entries || !entrylock.Lock())
        return nullptr;
    const auto* entry = static_cast<HelpEntry*>(entries->ItemAt(IndexOf(view)));
    const char* text = entry ? entry->text : nullptr;
    entrylock.Unlock();
    return text;
}

int32 BubbleHelper::IndexOf(const BView* view) const {
    int32 index = entries->CountItems() - 1;
    while (index >= 0 && static_cast<HelpEntry*>(entries->ItemAt(index))->view != view)
        index--;
    return index;
}

void BubbleHelper::RemoveEntry(int32 index) {
    auto* entry = static_cast<HelpEntry*>(entries->RemoveItem(index));
    if (!entry)
        return;
    free(entry->text);
    delete entry;
}

void BubbleHelper::EnableHelp(bool enable) {
    helpenabled = enable;
}

BView* BubbleHelper::FindView(BPoint where) {
    BView* found = nullptr;
    WithViewAt(where, [&](BView* view) { found = view; });
    return found;
}

// Calls `action`, with the view's window locked, if there is a view.
void BubbleHelper::WithViewAt(BPoint where, const std::function<void(BView*)>& action) {
    constexpr bigtime_t kPatience = 1'000'000;
    const BMessenger ownWindow = bubblewin ? bubble : BMessenger();
    BView* view = nullptr;
    for (int32 index = 0; !view; index++) {
        const BMessenger target = BApplication::WindowAt(index);
        if (!target.IsTargetLocal())
            return;
        if (target == ownWindow || target.LockTargetWithTimeout(kPatience) != B_OK)
            continue;
        BLooper* looper = nullptr;
        target.Target(&looper);
        view = VisibleViewAt(*static_cast<BWindow*>(looper), where);
        if (view)
            action(view);
        looper->Unlock();
    }
}

// The text for what is at the point; empty if there is none.
std::string BubbleHelper::HelpAt(BPoint where) {
    std::string text;
    WithViewAt(where, [&](BView* view) {
        if (!entrylock.Lock())
            return;
        const char* found = nullptr;
        for (; view && !found; view = view->Parent())
            found = GetHelp(view);
        if (found)
            text = found;
        entrylock.Unlock();
    });
    return text;
}

void BubbleHelper::ShowBubble(BPoint where) {
    if (!LockBubble())
        return;
    BWindow* window = bubblewin;
    window->MoveTo(where);
    window->SetWorkspaces(B_CURRENT_WORKSPACE);
    if (window->IsHidden())
        window->Show();
    else
        window->UpdateIfNeeded();
    window->Unlock();
}

void BubbleHelper::HideBubble() {
    if (!LockBubble())
        return;
    BWindow* window = bubblewin;
    window->MoveTo(kParkingPlace);
    if (!window->IsHidden())
        window->Hide();
    window->Unlock();
}

void BubbleHelper::DisplayHelp(const char* text, BPoint where) {
    if (!LockBubble())
        return;
    BWindow* window = bubblewin;
    bubbletext->SetText(text);
    const BPoint size = BubbleSize(*bubbletext);
    window->ResizeTo(size.x, size.y);
    bubbletext->SetTextRect(BRect(2, 2, size.x - 2, size.y + 2));
    ShowBubble(BubblePlace(size, where));
    window->Unlock();
}

status_t BubbleHelper::_helper(void* data) {
    static_cast<BubbleHelper*>(data)->Helper();
    return B_OK;
}

void BubbleHelper::Helper() {
    if (!AwaitLaunch())
        return;
    MakeBubble();
    PointerPresence& presence = PointerPresence::Shared();
    do {
        if (!presence.IsHere())
            restcount = 0;
        if (presence.WaitForPointer() != B_OK || !be_app_messenger.IsValid())
            return;
        if (helpenabled && LockBubble() && WatchPointer())
            bubblewin.load()->Unlock();
    } while (snooze(cycle) == B_OK);
}

// False if the thread is to stop.
bool BubbleHelper::AwaitLaunch() {
    while (!be_app_messenger.IsValid() || be_app->IsLaunching()) {
        if (snooze(2 * cycle) != B_OK)
            return false;
    }
    return true;
}

void BubbleHelper::MakeBubble() {
    auto* window =
        new BWindow(BRect(-100, -100, -50, -50), "", B_BORDERED_WINDOW_LOOK,
                    B_FLOATING_ALL_WINDOW_FEEL, B_NOT_MOVABLE | B_AVOID_FOCUS, B_CURRENT_WORKSPACE);
    bubbletext = new BTextView(BRect(0, 0, 50, 50), "", BRect(2, 2, 48, 48), B_FOLLOW_ALL_SIDES,
                               B_WILL_DRAW);
    window->AddChild(bubbletext);
    bubbletext->SetWordWrap(false);
    bubbletext->SetLowColor(kPaleYellow);
    bubbletext->SetViewColor(kPaleYellow);
    bubbletext->SetHighColor(kBlack);
    bubble = BMessenger(window);
    bubblewin = window;
    window->Run();
    if (!LockBubble())
        return;
    window->Activate(false);
    rename_thread(window->Thread(), "bubble");
    window->Unlock();
}

// By its address: it may have been quit, with all windows.
bool BubbleHelper::LockBubble() {
    return bubblewin && bubble.LockTarget();
}

// One look at the pointer. False if the bubble's window is no longer locked.
bool BubbleHelper::WatchPointer() {
    const PointerState pointer;
    const bool isResting = pointer.where == lastseen && pointer.buttons == 0;
    lastseen = pointer.where;
    if (!isResting)
        restcount = 0;
    else if (++restcount > kQuietCycles) {
        restcount = 0;
        const std::string text = HelpAt(pointer.where);
        return text.empty() || Raise(text, pointer.where);
    }
    return true;
}

bool BubbleHelper::Raise(const std::string& text, BPoint where) {
    DisplayHelp(text.c_str(), where);
    const size_t stay = std::max(text.size(), kShortestStay) + 1;
    bool isResting = true;
    for (size_t passed = 0; isResting && passed < stay; passed++) {
        if (!PassCycle())
            return false;
        isResting = RestsAt(where);
    }
    HideBubble();
    return AwaitLeave(where);
}

// Sets the bubble's window free for one cycle. False if it is not locked again.
bool BubbleHelper::PassCycle() {
    bubblewin.load()->Unlock();
    return snooze(cycle) == B_OK && LockBubble();
}

// Waits until the pointer is elsewhere, with the window free meanwhile; the same.
bool BubbleHelper::AwaitLeave(BPoint where) {
    PointerPresence& presence = PointerPresence::Shared();
    for (;;) {
        const uint64 seen = presence.Events();
        if (PointerState().where != where)
            return true;
        bubblewin.load()->Unlock();
        if (presence.WaitForEvent(seen) != B_OK || snooze(cycle) != B_OK || !LockBubble())
            return false;
    }
}

#include "kits/interface/menus/MenuTracker.h"

#include "host/x11/Display.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuPlacement.h"
#include "kits/interface/menus/MenuWindow.h"
#include "kits/interface/window/Screen.h"
#include "kits/interface/window/WindowRoster.h"

namespace {

constexpr bigtime_t kGrabTimeout = 300'000;

} // namespace

MenuTracker::MenuTracker(const BMenu& first, bool invokes)
    : fInvokes(invokes)
    , fWindow(BMenuWindow::Take(&first))
    , fMessenger(fWindow) {}

std::shared_ptr<MenuTracker> MenuTracker::Open(BMenu& menu, BPoint where, bool openAnyway,
                                               bool invokes, BMenuItem* selected, bool deletes) {
    std::shared_ptr<MenuTracker> tracker(new MenuTracker(menu, invokes));
    if (!Register(tracker))
        return nullptr;
    const MenuLock lock(*tracker->fWindow);
    if (!tracker->Begin(openAnyway))
        return nullptr;
    if (deletes)
        tracker->fOwned.reset(&menu);
    tracker->OpenMenu(menu, where, selected);
    return tracker;
}

std::shared_ptr<MenuTracker> MenuTracker::OpenTitle(std::vector<MenuTitle> titles, size_t first,
                                                    bool selectsItem) {
    std::shared_ptr<MenuTracker> tracker(new MenuTracker(*titles[first].menu, false));
    tracker->fTitles = std::move(titles);
    tracker->fShownTitle = first;
    if (!Register(tracker))
        return nullptr;
    const MenuLock lock(*tracker->fWindow);
    if (!tracker->Begin(true))
        return nullptr;
    tracker->ShowTitle(first, selectsItem);
    return tracker;
}

bool MenuTracker::Register(const std::shared_ptr<MenuTracker>& tracker) {
    const bool isOnly = WindowRoster::Shared().AddMenu([tracker] { tracker->Cancel(); });
    if (!isOnly)
        BMenuWindow::GiveBack(tracker->fWindow);
    return isOnly;
}

bool MenuTracker::Begin(bool openAnyway) {
    fWindow->SetTracker(shared_from_this());
    // The server holds the buttons' state, so a press of the moment before counts.
    if (!fCancelled && (openAnyway || host::Display::Shared()->GetPointer().buttons != 0) &&
        fWindow->GrabInput(kGrabTimeout) == B_OK)
        return true;
    Finish(nullptr);
    return false;
}

void MenuTracker::OpenMenu(BMenu& menu, BPoint where, BMenuItem* selected) {
    menu.Layout();
    fWindow->Open(
        menu,
        PlaceMenu(where, menu.ContentWidth(), menu.ContentHeight(), BScreen::MonitorFrame(where)),
        *this);
    fLevels.push_back({fWindow, &menu});

    const host::Display& display = *host::Display::Shared();
    const host::Pointer pointer = display.GetPointer();
    const auto scale = static_cast<float>(display.Scale());
    StartAt(BPoint(static_cast<float>(pointer.screenX) / scale,
                   static_cast<float>(pointer.screenY) / scale),
            pointer.buttons);
    if (selected) {
        menu.Select(selected);
        menu.ScrollToShow(*selected);
    }
    fWindow->UpdateIfNeeded();
}

BMenuItem* MenuTracker::Wait() {
    std::unique_lock lock(fMutex);
    fClosed.wait(lock, [this] { return fIsClosed; });
    return fChosen;
}

void MenuTracker::Cancel() {
    fCancelled = true;
    fMessenger.SendMessage(BMenuWindow::kMenuCancelled);
}

std::optional<size_t> MenuTracker::WaitForTitle(size_t shown) {
    std::unique_lock lock(fMutex);
    fClosed.wait(lock, [&] { return fIsClosed || fShownTitle != shown; });
    return fIsClosed ? std::nullopt : std::optional(fShownTitle);
}

std::optional<size_t> MenuTracker::TitleAt(BPoint where) const {
    for (size_t i = 0; i < fTitles.size(); i++) {
        if (fTitles[i].frame.Contains(where))
            return i;
    }
    return std::nullopt;
}

void MenuTracker::ShowTitle(size_t index, bool selects) {
    StopTimer();
    if (!fLevels.empty()) {
        CloseAbove(0);
        fLevels.clear();
        fWindow->Close();
    }
    const BRect title = fTitles[index].frame;
    BMenu& menu = *fTitles[index].menu;
    OpenMenu(menu, title.LeftBottom() + BPoint(0, 1),
             selects ? menu.NextSelectable(-1, 1) : nullptr);

    const std::lock_guard lock(fMutex);
    fShownTitle = index;
    fClosed.notify_all();
}

// Whether the pointer went to a title whose menu was not open.
bool MenuTracker::FollowTitles(BPoint where) {
    if (LevelAt(where))
        return false;
    const auto title = TitleAt(where);
    if (!title || fTitles[*title].menu == fLevels.front().menu)
        return false;
    ShowTitle(*title, false);
    return true;
}

// The menu before or after the open one, around the ends.
void MenuTracker::StepTitle(int step) {
    if (fTitles.size() < 2)
        return;
    size_t open = 0;
    while (fTitles[open].menu != fLevels.front().menu)
        open++;
    const size_t count = fTitles.size();
    ShowTitle(step > 0 ? (open + 1) % count : (open + count - 1) % count, true);
}

bool MenuTracker::HandleMessage(const BMessage& message) {
    if (fCancelled) {
        Finish(nullptr);
        return true;
    }
    const bool known = HandleInput(message);
    if (fCancelled)
        Finish(nullptr);
    UpdateSubmenus();
    return known;
}

bool MenuTracker::HandleInput(const BMessage& message) {
    const BPoint where = message.GetPoint("screen_where", fPointer);
    const auto buttons = static_cast<uint32>(message.GetInt32("buttons", 0));
    switch (message.what) {
    case B_MOUSE_MOVED:
        PointerMoved(where);
        return true;
    case B_MOUSE_DOWN:
        ButtonPressed(where, buttons);
        return true;
    case B_MOUSE_UP:
        ButtonReleased(where, buttons);
        return true;
    case B_MOUSE_WHEEL_CHANGED:
        WheelTurned(message.GetFloat("be:wheel_delta_y", 0));
        return true;
    case B_KEY_DOWN:
    case B_UNMAPPED_KEY_DOWN:
        KeyPressed(message);
        return true;
    case B_KEY_UP:
    case B_UNMAPPED_KEY_UP:
    case BMenuWindow::kMenuCancelled:
        return true;
    case BMenuWindow::kMenuTimer:
        if (message.GetInt32("serial", 0) == fTimerSerial)
            TimerFired();
        return true;
    default:
        return false;
    }
}

// Their own threads draw only after a message.
void MenuTracker::UpdateSubmenus() {
    for (size_t i = 1; i < fLevels.size(); i++) {
        const MenuLock lock(*fLevels[i].window);
        fLevels[i].window->UpdateIfNeeded();
    }
}

void MenuTracker::Choose(size_t level, BMenuItem& item) {
    if (item.Submenu())
        OpenSubmenu(level, item, true);
    else
        Finish(&item);
}

void MenuTracker::OpenSubmenu(size_t level, BMenuItem& item, bool selectFirst) {
    StopTimer();
    BMenu& submenu = *item.Submenu();
    if (submenu.CountItems() == 0)
        return;
    const bool isOpen = level + 1 < fLevels.size() && fLevels[level + 1].menu == &submenu;
    if (!isOpen) {
        CloseAbove(level);
        fAimFrom = fPointer;
        submenu.Layout();
        const BMenuWindow& parent = *fLevels[level].window;
        const BRect beside = parent.ConvertToScreen(item.Frame());
        const BRect frame =
            PlaceSubmenu(parent.Frame(), beside, submenu.ContentWidth(), submenu.ContentHeight(),
                         BScreen::MonitorFrame(beside.LeftTop()));
        BMenuWindow* window = BMenuWindow::Take(&submenu);
        const MenuLock lock(*window);
        window->Open(submenu, frame, *this);
        fLevels.push_back({window, &submenu});
    }
    if (selectFirst) {
        const MenuLock lock(*fLevels[level + 1].window);
        submenu.Select(submenu.NextSelectable(-1, 1));
    }
}

void MenuTracker::CloseAbove(size_t level) {
    while (fLevels.size() > level + 1) {
        BMenuWindow* window = fLevels.back().window;
        fLevels.pop_back();
        {
            const MenuLock lock(*window);
            window->Close();
        }
        BMenuWindow::GiveBack(window);
    }
}

void MenuTracker::Finish(BMenuItem* chosen) {
    if (fFinished)
        return;
    fFinished = true;
    StopTimer();
    CloseAbove(0);
    fLevels.clear();
    fWindow->Close();
    fWindow->ReleaseInput();
    fWindow->SetTracker(nullptr);
    if (chosen && fInvokes)
        chosen->Invoke();
    fOwned = nullptr;
    BMenuWindow::GiveBack(fWindow);
    WindowRoster::Shared().RemoveMenu();

    const std::lock_guard lock(fMutex);
    fChosen = chosen;
    fIsClosed = true;
    fClosed.notify_all();
}

void MenuTracker::StartTimer(Timer timer, bigtime_t delay, bool repeats) {
    static std::atomic<int32> sLastSerial = 0;
    fTimer = timer;
    // A copy of an earlier timer may be in the queue, even one of an earlier menu.
    fTimerSerial = ++sLastSerial;
    BMessage message(BMenuWindow::kMenuTimer);
    message.AddInt32("serial", fTimerSerial);
    fRunner = std::make_unique<BMessageRunner>(fMessenger, &message, delay, repeats ? -1 : 1);
}

void MenuTracker::StopTimer() {
    fTimerSerial = -1;
    fRunner = nullptr;
}

void MenuTracker::TimerFired() {
    switch (fTimer) {
    case Timer::OpenSubmenu:
        StopTimer();
        if (const auto level = LevelAt(fPointer)) {
            const MenuLock lock(*fLevels[*level].window);
            BMenuItem* item = fLevels[*level].menu->Selected();
            if (item && item->Submenu())
                OpenSubmenu(*level, *item, false);
        }
        break;
    case Timer::StopAiming:
        StopTimer();
        Follow(fPointer);
        break;
    case Timer::Scroll:
        ScrollAtArrow();
        break;
    case Timer::StopSwallowing:
        Finish(nullptr);
        break;
    }
}

#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuLock.h"
#include "kits/interface/menus/MenuTracker.h"

std::shared_ptr<MenuTracker> MenuTracker::OpenTitle(std::vector<MenuTitle> titles, size_t first) {
    std::shared_ptr<MenuTracker> tracker(new MenuTracker(false));
    tracker->fTitles = std::move(titles);
    tracker->fShownTitle = first;
    if (!Register(tracker))
        return nullptr;
    const MenuLock lock(*tracker->fWindow);
    if (!tracker->Begin(true))
        return nullptr;
    tracker->ShowTitle(first, false);
    return tracker;
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

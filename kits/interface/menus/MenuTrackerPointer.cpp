#include <cmath>

#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuPlacement.h"
#include "kits/interface/menus/MenuTracker.h"
#include "kits/interface/menus/MenuWindow.h"

namespace {

constexpr bigtime_t kHoverDelay = 120'000;
constexpr bigtime_t kAimDelay = 300'000;
constexpr bigtime_t kScrollInterval = 40'000;
// A press whose release never comes must not keep the session's input.
constexpr bigtime_t kSwallowTime = 1'000'000;

constexpr float kScrollStep = 16;
constexpr float kWheelStep = 48;

// A hand that clicks moves the pointer less.
constexpr float kDragDistance = 5;

} // namespace

void MenuTracker::StartAt(BPoint where, uint32 buttons) {
    fOrigin = fPointer = where;
    fButtons = buttons;
    if (LevelAt(where))
        Follow(where);
}

void MenuTracker::PointerMoved(BPoint where) {
    // A key may have moved the selection away from a pointer that rests.
    if (where == fPointer || fSwallowing)
        return;
    const BPoint before = fPointer;
    NotePlace(where);
    if (!FollowTitles(where) && !IsAiming(before, where))
        Follow(where);
}

void MenuTracker::NotePlace(BPoint where) {
    fPointer = where;
    if (std::hypot(where.x - fOrigin.x, where.y - fOrigin.y) > kDragDistance)
        fDragged = true;
    if (LevelAt(where))
        fEntered = true;
}

void MenuTracker::ButtonPressed(BPoint where, uint32 buttons) {
    fButtons = buttons;
    fPressSeen = true;
    if (fSwallowing)
        return;
    NotePlace(where);
    const auto level = LevelAt(where);
    if (!level) {
        StartSwallowing();
        return;
    }
    Follow(where);
    const MenuLock lock(*fLevels[*level].window);
    BMenuItem* item = fLevels[*level].menu->Selected();
    if (item && item->Submenu())
        OpenSubmenu(*level, *item, false);
}

void MenuTracker::ButtonReleased(BPoint where, uint32 buttons) {
    const uint32 released = fButtons & ~buttons;
    fButtons = buttons;
    if (buttons != 0)
        return;
    if (fSwallowing) {
        Finish(nullptr);
        return;
    }
    if (where != fPointer) {
        NotePlace(where);
        Follow(where);
    }
    ReleasedAt(where, released, !fPressSeen);
    fEntered = false;
}

void MenuTracker::ReleasedAt(BPoint where, uint32 released, bool wasOpening) {
    if (released == 0 || (wasOpening && !fDragged))
        return;
    const auto level = LevelAt(where);
    if (!level) {
        // Someone who dragged out of the menu has changed their mind.
        if (fEntered && !TitleAt(where))
            Finish(nullptr);
        return;
    }
    if ((released & (B_PRIMARY_MOUSE_BUTTON | B_SECONDARY_MOUSE_BUTTON)) == 0)
        return;
    const MenuLock lock(*fLevels[*level].window);
    BMenu& menu = *fLevels[*level].menu;
    BMenuItem* item = menu.SelectableAt(fLevels[*level].window->ConvertFromScreen(where));
    if (item && !item->Submenu())
        Finish(item);
}

void MenuTracker::WheelTurned(float delta) {
    const auto level = LevelAt(fPointer);
    if (!level || fSwallowing)
        return;
    const MenuLock lock(*fLevels[*level].window);
    BMenu& menu = *fLevels[*level].menu;
    if (menu.ScrollTo(menu.fScroll + delta * kWheelStep)) {
        CloseAbove(*level);
        Follow(fPointer);
    }
}

// Whether the pointer leaves the item whose sub-menu is open towards that sub-menu. Then the items
// on its way leave the selection alone, unless it stays on one.
bool MenuTracker::IsAiming(BPoint before, BPoint where) {
    const auto level = LevelAt(where);
    if (!level || *level + 2 != fLevels.size())
        return false;
    BRect submenu;
    {
        const MenuLock lock(*fLevels.back().window);
        submenu = fLevels.back().window->Frame();
    }
    const MenuLock lock(*fLevels[*level].window);
    BMenuItem* item = fLevels.back().menu->Superitem();
    BRect start = fLevels[*level].window->ConvertToScreen(item->Frame());
    if (start.Contains(where)) {
        fAimFrom = where;
        return false;
    }
    if (!HeadsForSubmenu(fAimFrom, where, submenu))
        return false;
    const bool right = submenu.left + submenu.right > 2 * where.x;
    const float nearer = right ? where.x - before.x : before.x - where.x;
    if (nearer < 0)
        return false;
    const bool isTimed = fRunner && fTimer == Timer::StopAiming;
    if (nearer > 0 || !isTimed)
        StartTimer(Timer::StopAiming, kAimDelay);
    return true;
}

void MenuTracker::Follow(BPoint where) {
    const auto level = LevelAt(where);
    if (level) {
        FollowInMenu(*level, where);
        return;
    }
    StopTimer();
    if (fLevels.empty())
        return;
    const MenuLock lock(*fLevels.back().window);
    fLevels.back().menu->Select(nullptr);
}

void MenuTracker::FollowInMenu(size_t level, BPoint where) {
    const MenuLock lock(*fLevels[level].window);
    BMenu& menu = *fLevels[level].menu;
    const BPoint place = fLevels[level].window->ConvertFromScreen(where);
    const BMenu::Part part = menu.PartAt(place);
    BMenuItem* item = menu.SelectableAt(place);

    const bool isOpen =
        item && level + 1 < fLevels.size() && fLevels[level + 1].menu == item->Submenu();
    CloseAbove(isOpen ? level + 1 : level);
    if (isOpen) {
        const MenuLock submenuLock(*fLevels[level + 1].window);
        fLevels[level + 1].menu->Select(nullptr);
    }

    const bool isNew = item != menu.Selected();
    menu.Select(item);
    if (part == BMenu::Part::UpArrow || part == BMenu::Part::DownArrow) {
        if (!fRunner || fTimer != Timer::Scroll)
            StartTimer(Timer::Scroll, kScrollInterval, true);
    } else if (item && item->Submenu() && !isOpen) {
        if (isNew || !fRunner || fTimer != Timer::OpenSubmenu)
            StartTimer(Timer::OpenSubmenu, kHoverDelay);
    } else {
        StopTimer();
    }
}

void MenuTracker::ScrollAtArrow() {
    const auto level = LevelAt(fPointer);
    bool scrolled = false;
    if (level) {
        const MenuLock lock(*fLevels[*level].window);
        BMenu& menu = *fLevels[*level].menu;
        const BMenu::Part part = menu.PartAt(fLevels[*level].window->ConvertFromScreen(fPointer));
        const float step = part == BMenu::Part::UpArrow     ? -kScrollStep
                           : part == BMenu::Part::DownArrow ? kScrollStep
                                                            : 0;
        scrolled = menu.ScrollTo(menu.fScroll + step);
    }
    if (!scrolled)
        StopTimer();
}

// The menu is gone at once, but the release of the press that closed it must reach no window.
void MenuTracker::StartSwallowing() {
    fSwallowing = true;
    CloseAbove(0);
    fWindow->Hide();
    StartTimer(Timer::StopSwallowing, kSwallowTime);
}

std::optional<size_t> MenuTracker::LevelAt(BPoint where) const {
    for (size_t i = fLevels.size(); i-- > 0;) {
        const MenuLock lock(*fLevels[i].window);
        BRect frame = fLevels[i].window->Frame();
        // At fractions of a pixel the last one counts whole.
        frame.right += 1;
        frame.bottom += 1;
        if (frame.Contains(where) && where.x < frame.right && where.y < frame.bottom)
            return i;
    }
    return std::nullopt;
}

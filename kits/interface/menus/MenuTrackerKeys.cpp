#include <clocale>
#include <cwchar>
#include <cwctype>
#include <locale.h>

#include "base/Utf8.h"
#include "kits/app/Message.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuTracker.h"
#include "kits/interface/menus/MenuWindow.h"

namespace {

// The first character in lower case; the first byte of a text that is not UTF-8, 0 of none.
wint_t FirstLetter(std::string_view text) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (text.empty())
        return 0;
    const char32_t letter = FirstCharacter(text).code;
    if (letter == kNoCharacter)
        return static_cast<unsigned char>(text[0]);
    return towlower_l(letter, utf8);
}

bool IsLetter(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code > B_SPACE && code != B_DELETE;
}

} // namespace

void MenuTracker::KeyPressed(const BMessage& message) {
    const int32 key = message.GetInt32("key", -1);
    // One that was held when the menu opened must not choose in it by repeating.
    const bool repeats = message.GetInt32("be:key_repeat", 0) != 0;
    if (fSwallowing || (repeats && key != fPressedKey))
        return;
    fPressedKey = key;
    const std::string bytes = message.GetString("bytes", "");
    const Level level = fLevels[KeyLevel()];
    const MenuLock lock(*level.window);
    level.menu->KeyDown(bytes.c_str(), static_cast<int32>(bytes.size()));
}

// The sub-menu opened last has the keys once something is selected in it.
size_t MenuTracker::KeyLevel() const {
    size_t level = fLevels.size() - 1;
    for (; level > 0; level--) {
        const MenuLock lock(*fLevels[level].window);
        if (fLevels[level].menu->Selected())
            break;
    }
    return level;
}

void MenuTracker::KeyDown(BMenu& menu, const char* bytes, int32 numBytes) {
    if (numBytes < 1 || fFinished)
        return;
    size_t level = 0;
    while (fLevels[level].menu != &menu)
        level++;
    BMenuItem* selected = menu.Selected();
    const int32 index = menu.IndexOf(selected);
    switch (bytes[0]) {
    case B_UP_ARROW:
        SelectFrom(menu, selected ? index : 0, -1);
        break;
    case B_DOWN_ARROW:
        SelectFrom(menu, selected ? index : -1, 1);
        break;
    case B_HOME:
        SelectFrom(menu, -1, 1);
        break;
    case B_END:
        SelectFrom(menu, 0, -1);
        break;
    case B_PAGE_UP:
        SelectPage(menu, -1);
        break;
    case B_PAGE_DOWN:
        SelectPage(menu, 1);
        break;
    case B_RIGHT_ARROW:
        if (selected && selected->Submenu())
            OpenSubmenu(level, *selected, true);
        else
            StepTitle(1);
        break;
    case B_LEFT_ARROW:
        if (fLevels.size() > 1)
            CloseAbove(fLevels.size() - 2);
        else
            StepTitle(-1);
        break;
    case B_ESCAPE:
        if (fLevels.size() > 1)
            CloseAbove(fLevels.size() - 2);
        else
            Finish(nullptr);
        break;
    case B_ENTER:
    case B_SPACE:
        if (selected)
            Choose(level, *selected);
        break;
    default:
        if (IsLetter(bytes[0]))
            SelectByLetter(level, bytes, numBytes);
    }
}

void MenuTracker::SelectFrom(BMenu& menu, int32 index, int32 step) {
    BMenuItem* item = menu.NextSelectable(index, step);
    if (!item)
        return;
    StopTimer();
    if (item != menu.Selected() && fLevels.back().menu != &menu)
        CloseAbove(fLevels.size() - 2);
    menu.Select(item);
    menu.ScrollToShow(*item);
}

// As far as the menu shows at a time, and not around the ends.
void MenuTracker::SelectPage(BMenu& menu, int32 step) {
    const BMenuItem* selected = menu.Selected();
    const float page = menu.Viewport().Height() + 1;
    const float place = (selected ? selected->fTop : 0) + page * static_cast<float>(step);
    int32 index = 0;
    while (index < menu.CountItems() - 1 && menu.ItemAt(index)->fTop < place)
        index++;
    SelectFrom(menu, index + step, -step);
}

void MenuTracker::SelectByLetter(size_t level, const char* bytes, int32 numBytes) {
    BMenu& menu = *fLevels[level].menu;
    const wint_t letter = FirstLetter({bytes, static_cast<size_t>(numBytes)});
    const int32 start = menu.Selected() ? menu.IndexOf(menu.Selected()) : -1;
    const int32 count = menu.CountItems();
    int32 matches = 0;
    int32 next = -1;
    for (int32 i = 1; i <= count; i++) {
        const int32 index = (start + i) % count;
        const BMenuItem* item = menu.ItemAt(index);
        if (!item->IsSelectable() || FirstLetter(item->Label()) != letter)
            continue;
        matches++;
        if (next < 0)
            next = index;
    }
    if (matches == 0)
        return;
    SelectFrom(menu, next - 1, 1);
    if (matches == 1)
        Choose(level, *menu.ItemAt(next));
}

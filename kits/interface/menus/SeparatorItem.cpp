#include "kits/interface/menus/SeparatorItem.h"

#include <cmath>

#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuMetrics.h"

BSeparatorItem::BSeparatorItem()
    : BMenuItem("", nullptr) {}

void BSeparatorItem::GetContentSize(float* width, float* height) {
    *width = 0;
    *height = kSeparatorHeight - kItemTop - kItemBottom;
}

void BSeparatorItem::Draw() {
    BMenu& menu = *Menu();
    const BRect frame = Frame();
    const float middle = std::floor((frame.top + frame.bottom) / 2);
    menu.SetHighColor(tint_color(menu.ViewColor(), B_DARKEN_2_TINT));
    menu.StrokeLine({frame.left + 1, middle}, {frame.right - 1, middle});
    menu.SetHighColor(tint_color(menu.ViewColor(), B_LIGHTEN_2_TINT));
    menu.StrokeLine({frame.left + 1, middle + 1}, {frame.right - 1, middle + 1});
}

#include "kits/interface/menus/MenuBar.h"

#include <algorithm>
#include <cmath>

#include "kits/app/Message.h"
#include "kits/interface/menus/MenuTracker.h"
#include "kits/interface/window/Window.h"

namespace {

constexpr int32 kF10 = 0x0b;      // raw key code
constexpr float kTitleMargin = 8; // beside a title
constexpr float kAbove = 2;
constexpr float kBelow = 3; // with the line below the bar

} // namespace

BMenuBar::BMenuBar(BRect frame, const char* name, uint32 resizingMode, menu_layout,
                   bool resizeToFit)
    : BMenu(frame, name, resizingMode, B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE)
    , fResizeToFit(resizeToFit) {}

void BMenuBar::AttachedToWindow() {
    BMenu::AttachedToWindow();
    float width = 0;
    float height = 0;
    GetPreferredSize(&width, &height);
    if (fResizeToFit)
        ResizeTo(width, std::max(height, Bounds().Height()));
}

void BMenuBar::GetPreferredSize(float* width, float* height) {
    font_height font;
    GetFontHeight(&font);
    *width = Bounds().Width();
    *height = std::ceil(font.ascent + font.descent) + kAbove + kBelow - 1;
}

BRect BMenuBar::TitleFrame(int32 index) const {
    float left = 1;
    for (int32 i = 0; i < index; i++)
        left += std::ceil(StringWidth(ItemAt(i)->Label())) + 2 * kTitleMargin;
    const float width = std::ceil(StringWidth(ItemAt(index)->Label())) + 2 * kTitleMargin;
    return {left, 1, left + width - 1, Bounds().bottom - 1};
}

void BMenuBar::Draw(BRect) {
    for (int32 i = 0; i < CountItems(); i++)
        DrawTitle(i);
    const BRect bounds = Bounds();
    SetHighColor(tint_color(ViewColor(), B_LIGHTEN_2_TINT));
    StrokeLine(bounds.LeftTop(), bounds.RightTop());
    SetHighColor(tint_color(ViewColor(), B_DARKEN_2_TINT));
    StrokeLine(bounds.LeftBottom(), bounds.RightBottom());
}

void BMenuBar::DrawTitle(int32 index) {
    const BMenuItem& item = *ItemAt(index);
    const BRect frame = TitleFrame(index);
    const bool isOpen = index == fOpen;
    if (isOpen) {
        SetHighColor(ui_color(B_MENU_SELECTION_BACKGROUND_COLOR));
        FillRect(frame);
    }
    SetHighColor(!item.IsEnabled() ? tint_color(ViewColor(), B_DARKEN_3_TINT)
                 : isOpen          ? ui_color(B_MENU_SELECTED_ITEM_TEXT_COLOR)
                                   : ui_color(B_MENU_ITEM_TEXT_COLOR));
    font_height font;
    GetFontHeight(&font);
    const float above =
        std::floor((frame.Height() + 1 - std::ceil(font.ascent + font.descent)) / 2);
    DrawString(item.Label(),
               BPoint(frame.left + kTitleMargin, frame.top + above + std::ceil(font.ascent)));
}

void BMenuBar::MouseDown(BPoint where) {
    BMessage* message = Window()->CurrentMessage();
    if (message && !(message->GetInt32("buttons", B_PRIMARY_MOUSE_BUTTON) & B_PRIMARY_MOUSE_BUTTON))
        return;
    for (int32 i = 0; i < CountItems(); i++) {
        if (TitleFrame(i).Contains(where) && ItemAt(i)->IsEnabled() && ItemAt(i)->Submenu()) {
            Open(i);
            return;
        }
    }
}

bool BMenuBar::HandleShortcut(const BMessage& keyDown) {
    constexpr int32 kModifiers = B_COMMAND_KEY | B_SHIFT_KEY | B_CONTROL_KEY | B_OPTION_KEY;
    if (keyDown.GetInt32("key", 0) != kF10 || (keyDown.GetInt32("modifiers", 0) & kModifiers) != 0)
        return InvokeShortcut(keyDown, BMessenger(Window()));
    const auto canOpen = [](const BMenuItem* item) { return item->IsEnabled() && item->Submenu(); };
    for (int32 i = 0; i < CountItems(); i++) {
        if (canOpen(ItemAt(i))) {
            Open(i, true);
            break;
        }
    }
    return true;
}

void BMenuBar::Open(int32 index, bool selectsItem) {
    GiveDefaultTarget(BMessenger(Window()));
    std::vector<MenuTitle> titles;
    std::vector<int32> places; // of the titles in the bar
    size_t shown = 0;
    for (int32 i = 0; i < CountItems(); i++) {
        if (!ItemAt(i)->IsEnabled() || !ItemAt(i)->Submenu())
            continue;
        if (i == index)
            shown = titles.size();
        titles.push_back({ItemAt(i)->Submenu(), ConvertToScreen(TitleFrame(i))});
        places.push_back(i);
    }
    const auto tracker = MenuTracker::OpenTitle(titles, shown, selectsItem);
    if (!tracker)
        return;
    for (std::optional<size_t> open = shown; open; open = tracker->WaitForTitle(*open)) {
        fOpen = places[*open];
        Invalidate();
        Window()->UpdateIfNeeded();
    }
    fOpen = -1;
    Invalidate();
    if (BMenuItem* chosen = tracker->Wait())
        chosen->Invoke();
}

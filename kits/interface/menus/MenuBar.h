#pragma once

#include "kits/interface/menus/Menu.h"

// A row of titles at the top of a window. A press on a title opens the menu below it, F10 the first
// one; the menus of the other titles follow as the pointer goes along the row, or with the arrow
// keys. Everything else is as in a BPopUpMenu. The window waits while a menu is open.
//
// Its items are menus. An item without a target sends to the window.
class BMenuBar : public BMenu {
public:
    // With `resizeToFit` it becomes high enough for its titles when it is attached. The layout of a
    // menu bar is always B_ITEMS_IN_ROW.
    BMenuBar(BRect frame, const char* name,
             uint32 resizingMode = B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP,
             menu_layout layout = B_ITEMS_IN_ROW, bool resizeToFit = true);

    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    // Its own size. As high as its titles need.
    void GetPreferredSize(float* width, float* height);

private:
    // The shortcuts of its items, and F10, which opens the first menu.
    bool HandleShortcut(const BMessage& keyDown) override;
    BRect TitleFrame(int32 index) const;
    void DrawTitle(int32 index);
    void Open(int32 index, bool selectsItem = false);

    const bool fResizeToFit;
    int32 fOpen = -1; // the title whose menu is open
};

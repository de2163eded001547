#pragma once

#include <string>

#include "kits/interface/window/View.h"

class BMenu;
class BMenuItem;

// A label, and behind it a box that shows which item of a menu is marked. A press on the box, or
// Space or the Down key, opens the menu with that item over the box. The window waits while it is
// open. Items without a target send to the window.
class BMenuField : public BView {
public:
    // The menu belongs to the field. The box shows the label of the marked item if the menu is one
    // that takes its label from the marked item, or else the menu's name. With `fixedSize` the box
    // goes to the right side of the field, else it is as wide as what it shows.
    BMenuField(BRect frame, const char* name, const char* label, BMenu* menu, bool fixedSize,
               uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
               uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
    ~BMenuField() override;

    BMenu* Menu() const { return fMenu; }
    const char* Label() const { return fLabel.c_str(); }
    // The room for the label; half of the field unless it is set.
    void SetDivider(float divider);
    float Divider() const { return fDivider; }

    // The text in the box, and the room for it, in logical pixels.
    std::string ShownLabel() const;
    float RoomForShownLabel() const;

    // Takes the parent's view colour.
    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void KeyDown(const char* bytes, int32 numBytes) override;
    void MakeFocus(bool focus = true) override;

private:
    bool HandleShortcut(const BMessage& keyDown) override;
    BRect BoxFrame() const;
    void DrawBox(BRect box);
    void OpenMenu();

    const std::string fLabel;
    BMenu* const fMenu;
    const bool fFixedSize;
    float fDivider;
};

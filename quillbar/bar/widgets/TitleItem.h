#pragma once

#include "kits/interface/menus/MenuItem.h"

// The head of a folder menu: the folder's name in bold. It sends nothing.
class QBTitleItem : public BMenuItem {
public:
    using BMenuItem::BMenuItem;

    // The height of the label's tallest glyph.
    float FindTallest() const;

protected:
    void GetContentSize(float* width, float* height) override;
    void DrawContent() override;
};

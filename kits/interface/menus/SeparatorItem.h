#pragma once

#include "kits/interface/menus/MenuItem.h"

// A line between groups of items. It is never chosen.
class BSeparatorItem : public BMenuItem {
public:
    BSeparatorItem();

protected:
    void GetContentSize(float* width, float* height) override;
    void Draw() override;
    bool IsSelectable() const override { return false; }
};

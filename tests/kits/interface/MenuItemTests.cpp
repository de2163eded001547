#include "kits/interface/menus/MenuItem.h"

#include <gtest/gtest.h>

#include "kits/app/Message.h"
#include "kits/interface/menus/Menu.h"

namespace {

TEST(Menu, AnItemHasOneMenuAndLeavesItWhenDeleted) {
    BMenu menu("menu");
    auto* first = new BMenuItem("First", new BMessage('1111'));
    auto* below = new BMenuItem("Below", new BMessage('bbbb'));
    auto* submenu = new BMenu("Sub");
    submenu->AddItem(below);
    menu.AddItem(submenu);
    EXPECT_TRUE(menu.AddItem(first, 0));
    EXPECT_FALSE(menu.AddItem(first));
    BMenu lost("Lost");
    EXPECT_FALSE(menu.AddItem(&lost, 7));
    EXPECT_EQ(menu.ItemAt(2), nullptr);
    EXPECT_TRUE(menu.RemoveItem(first));
    EXPECT_FALSE(menu.RemoveItem(first));
    delete first;
    delete menu.ItemAt(0);
    EXPECT_EQ(menu.CountItems(), 0);
}

} // namespace

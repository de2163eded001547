#include "kits/interface/MenuItem.h"

#include <gtest/gtest.h>

#include "kits/interface/Menu.h"
#include "kits/interface/SeparatorItem.h"
#include "tests/kits/interface/MenuDesktop.h"

namespace {

TEST(MenuItem, SendsItsMessageWithWhereItCameFrom) {
    BMenu menu("menu");
    menu.AddSeparatorItem();
    auto* item = new BMenuItem("Item", new BMessage('mine'));
    item->Message()->AddInt32("folder", 4);
    menu.AddItem(item);
    MessageCatcher* catcher = MessageCatcher::Start();
    item->SetTarget(catcher);

    EXPECT_EQ(item->Invoke(), B_OK);
    EXPECT_EQ(item->Invoke(), B_OK);

    const std::vector<BMessage> caught = catcher->WaitFor(2);
    ASSERT_EQ(caught.size(), 2u);
    for (const BMessage& message : caught) {
        void* source = nullptr;
        EXPECT_EQ(message.what, static_cast<uint32>('mine'));
        EXPECT_EQ(message.FindPointer("source", &source), B_OK);
        EXPECT_EQ(static_cast<BMenuItem*>(source), item);
        EXPECT_EQ(message.GetInt32("index", -1), 1);
        EXPECT_EQ(message.GetInt32("folder", -1), 4);
        EXPECT_GT(message.GetInt64("when", 0), 0);
    }
    EXPECT_FALSE(item->Message()->HasPointer("source"));
    catcher->Lock();
    catcher->Quit();
}

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
    EXPECT_EQ(menu.FindItem("Below"), below);
    EXPECT_EQ(menu.FindItem('bbbb'), below);
    EXPECT_TRUE(menu.RemoveItem(first));
    EXPECT_FALSE(menu.RemoveItem(first));
    delete first;
    delete menu.ItemAt(0);
    EXPECT_EQ(menu.CountItems(), 0);
}

TEST(Menu, RadioModeKeepsOneMark) {
    BMenu menu("menu");
    menu.SetRadioMode(true);
    auto* one = new BMenuItem("One", new BMessage('1111'));
    auto* two = new BMenuItem("Two", new BMessage('2222'));
    menu.AddItem(one);
    menu.AddItem(two);
    one->SetMarked(true);
    two->Invoke();
    EXPECT_FALSE(one->IsMarked());
    EXPECT_EQ(menu.FindMarked(), two);
}

} // namespace

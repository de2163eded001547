#include <gtest/gtest.h>

#include "kits/support/List.h"

namespace {

TEST(List, KeepsItemsInOrderAndRefusesIndicesOutsideIt) {
    int a, b, c;
    BList list;
    EXPECT_FALSE(list.AddItem(&a, 1));
    EXPECT_FALSE(list.AddItem(&a, -1));
    EXPECT_EQ(nullptr, list.LastItem());
    list.AddItem(&a);
    list.AddItem(&c);
    EXPECT_TRUE(list.AddItem(&b, 1));
    EXPECT_EQ(1, list.IndexOf(&b));
    EXPECT_EQ(&c, list.LastItem());
    EXPECT_EQ(nullptr, list.ItemAt(3));
    EXPECT_EQ(nullptr, list.RemoveItem(static_cast<int32>(-1)));
    EXPECT_EQ(&b, list.RemoveItem(1));
    EXPECT_TRUE(list.RemoveItem(&a));
    EXPECT_FALSE(list.RemoveItem(&a));
    EXPECT_EQ(1, list.CountItems());
}

} // namespace

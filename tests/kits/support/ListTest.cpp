#include <gtest/gtest.h>

#include "kits/support/List.h"

namespace {

TEST(List, KeepsItemsInOrder) {
    int a, b, c;
    BList list(2);
    list.AddItem(&a);
    list.AddItem(&c);
    EXPECT_TRUE(list.AddItem(&b, 1));
    EXPECT_EQ(1, list.IndexOf(&b));
    EXPECT_EQ(&c, list.LastItem());
    EXPECT_EQ(&b, list.RemoveItem(1));
    EXPECT_TRUE(list.RemoveItem(&a));
    EXPECT_FALSE(list.RemoveItem(&a));
    EXPECT_EQ(&c, list.FirstItem());
    EXPECT_EQ(1, list.CountItems());
}

TEST(List, RefusesIndicesOutsideIt) {
    int a;
    BList list;
    EXPECT_FALSE(list.AddItem(&a, 1));
    EXPECT_FALSE(list.AddItem(&a, -1));
    EXPECT_EQ(nullptr, list.ItemAt(0));
    EXPECT_EQ(nullptr, list.LastItem());
    EXPECT_EQ(nullptr, list.RemoveItem(static_cast<int32>(-1)));
    EXPECT_TRUE(list.IsEmpty());
}

} // namespace

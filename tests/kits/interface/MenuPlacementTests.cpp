#include "kits/interface/menus/MenuPlacement.h"

#include <gtest/gtest.h>

namespace {

const BRect kMonitor(1000, 0, 1799, 599); // the second one

TEST(MenuPlacement, MovesAMenuInsideTheMonitorOfItsPoint) {
    EXPECT_EQ(PlaceMenu({1100, 50}, 100, 200, kMonitor), BRect(1100, 50, 1199, 249));
    EXPECT_EQ(PlaceMenu({1790, 590}, 100, 200, kMonitor), BRect(1700, 400, 1799, 599));
    EXPECT_EQ(PlaceMenu({900, -30}, 100, 200, kMonitor), BRect(1000, 0, 1099, 199));
}

TEST(MenuPlacement, CutsALargerMenuToTheMonitor) {
    EXPECT_EQ(PlaceMenu({1100, 50}, 5000, 9000, kMonitor), kMonitor);
}

TEST(MenuPlacement, OpensASubmenuWhereThereIsRoom) {
    const BRect item(1102, 100, 1197, 119);
    const BRect onRight = PlaceSubmenu({1100, 50, 1199, 249}, item, 150, 80, kMonitor);
    EXPECT_LE(onRight.left, 1200);
    EXPECT_GT(onRight.left, 1190);
    EXPECT_LE(onRight.top, item.top);

    const BRect menu(1700, 50, 1799, 249);
    const BRect onLeft = PlaceSubmenu(menu, {1702, 100, 1797, 119}, 150, 80, kMonitor);
    EXPECT_GE(onLeft.right, menu.left - 1);
    EXPECT_LT(onLeft.right, menu.left + 10);

    const BRect noRoom = PlaceSubmenu({1100, 50, 1750, 249}, item, 700, 80, kMonitor);
    EXPECT_EQ(noRoom, kMonitor & noRoom);
    EXPECT_EQ(noRoom.Width(), 699);
}

TEST(MenuPlacement, TellsAWayToTheSubmenuFromOneDownTheMenu) {
    const BRect onRight(200, 100, 300, 300);
    EXPECT_TRUE(HeadsForSubmenu({150, 110}, {175, 180}, onRight));
    EXPECT_FALSE(HeadsForSubmenu({150, 110}, {152, 180}, onRight));
    EXPECT_FALSE(HeadsForSubmenu({150, 110}, {140, 111}, onRight));

    const BRect onLeft(0, 100, 100, 300);
    EXPECT_TRUE(HeadsForSubmenu({150, 110}, {125, 180}, onLeft));
    EXPECT_FALSE(HeadsForSubmenu({150, 110}, {160, 111}, onLeft));
}

} // namespace

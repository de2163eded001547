#include "tests/kits/interface/MenuDesktop.h"

using test::Box;
using test::Picture;

namespace {

using MenuLook = MenuTest;

TEST_F(MenuLook, ALongLabelIsCutToTheScreen) {
    AddThree();
    menu.ItemAt(1)->SetLabel(std::string(255, 'W').c_str());
    menu.ItemAt(2)->SetLabel("\xff\xfe not \n UTF-8 \xc3");
    Open();
    const Box frame = Menus().at(0).frame;
    EXPECT_EQ(frame.width, desktop.Frame().width);
    // No ink in the room right of a label.
    const Box item = Place(menu.ItemAt(1));
    const uint32_t background = screen.Pixel(item.x + 2, item.y + 2);
    const Picture end = screen.Grab({item.x + item.width - 19, item.y, 19, item.height});
    EXPECT_EQ(end.Count(background), end.pixels.size());
    Click(menu.ItemAt(2));
    EXPECT_EQ(Answer(), menu.ItemAt(2));
}

} // namespace

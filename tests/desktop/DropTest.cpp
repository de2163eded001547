// Colours that other programs drop on the bar.

#include "base/Color.h"
#include "tests/desktop/DesktopTest.h"
#include "tests/support/Peer.h"

using namespace test;

namespace {

class DropTest : public DesktopTest {
protected:
    // The ground under the last button has the bar's colour as it is.
    bool BarBecomes(uint32_t color) {
        const Box content = fProgram.Content();
        return WaitUntil(
            [&] { return fDesk.Pixel(content.x, content.y + content.height - 1) == color; });
    }
};

TEST_F(DropTest, AColorOnAnyPartIsTheBarsAndIsKept) {
    fProgram.Start();
    Peer partner(fDesk);
    // A colour chooser's words: 16 bits each, the opacity last.
    const Peer::Data red = {std::string("\xff\xff\xd0\xd0\x70\x70\xff\xff"), 16};
    const Peer::Data blue = {std::string("\x70\x70\xd0\xd0\xff\xff\xff\xff"), 16};
    const Peer::Data text = {"#a0e0b0\r\n"};
    const struct {
        Box part;
        const char* type;
        Peer::Data data;
        uint32_t color;
    } drops[] = {{fProgram.DragBar(), "application/x-color", red, 0xffd070},
                 {fProgram.Button(4), "application/x-color", blue, 0x70d0ff},
                 {fProgram.CloseBox(), "text/plain", text, 0xa0e0b0}};
    for (const auto& [part, type, data, color] : drops) {
        partner.offered = {{type, data}};
        EXPECT_EQ(partner.Drop(fProgram.Bar().id, part.CenterX(), part.CenterY(), {type}), true);
        EXPECT_TRUE(BarBecomes(color)) << std::hex << color;
    }
    EXPECT_EQ(fProgram.Stop(), 0);
    fProgram.Start();
    EXPECT_TRUE(BarBecomes(0xa0e0b0));
}

} // namespace

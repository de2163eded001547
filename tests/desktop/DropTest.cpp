// Colours that other programs drop on the bar.

#include "base/Color.h"
#include "tests/desktop/DesktopTest.h"
#include "tests/support/Peer.h"

using namespace test;

namespace {

class DropTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        fProgram.Start();
    }
    // A colour chooser's words: 16 bits each, the opacity last.
    static std::string Words(uint32_t color) {
        std::string bytes;
        for (const uint32_t channel :
             {color >> 16 & 0xff, color >> 8 & 0xff, color & 0xff, 0xffu}) {
            const auto word = static_cast<uint16_t>(channel * 0x101);
            bytes.append(reinterpret_cast<const char*>(&word), 2);
        }
        return bytes;
    }
    // The ground under the last button has the bar's colour as it is.
    uint32_t Ground() const {
        const Box content = fProgram.Content();
        return fDesk.Pixel(content.x, content.y + content.height - 1);
    }
    bool BarBecomes(uint32_t color) {
        return WaitUntil([&] { return Ground() == color; });
    }
    // What the bar says to it.
    std::optional<bool> DropOn(const Box& part, const std::string& type) {
        return fPartner.Drop(fProgram.Bar().id, part.CenterX(), part.CenterY(), {type});
    }

    Peer fPartner{fDesk};
};

TEST_F(DropTest, AColorOnAnyPartIsTheBarsAndIsKept) {
    const std::string type = "application/x-color";
    const std::pair<Box, uint32_t> drops[] = {{fProgram.DragBar(), 0xffd070},
                                              {fProgram.Button(4), 0x70d0ff},
                                              {fProgram.CloseBox(), 0xc0a0e0}};
    for (const auto& [part, color] : drops) {
        fPartner.offered = {{type, {Words(color), 16}}};
        EXPECT_EQ(DropOn(part, type), true);
        EXPECT_TRUE(BarBecomes(color)) << std::hex << color;
    }
    fPartner.offered = {{"text/plain", {"#a0e0b0\r\n"}}};
    EXPECT_EQ(DropOn(fProgram.DragBar(), "text/plain"), true);
    EXPECT_TRUE(BarBecomes(0xa0e0b0));
    EXPECT_EQ(fProgram.Stop(), 0);
    fProgram.Start();
    EXPECT_TRUE(BarBecomes(0xa0e0b0));
}

} // namespace

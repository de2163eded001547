// The about box of the running program.

#include <gmock/gmock.h>

#include "base/Utf8.h"
#include "tests/desktop/DesktopTest.h"
#include "tests/support/Peer.h"

using namespace test;
using testing::ElementsAre;

namespace {

constexpr uint32_t kBlue = 0x0000ff, kDarkBlue = 0x000078, kRed = 0xff0000;

class AboutTest : public DesktopTest {
protected:
    std::vector<WindowInfo> Abouts() { return fProgram.Titled("About Quillbar"); }
    bool AboutsBecome(size_t count) {
        return WaitUntil([&] { return Abouts().size() == count; });
    }
    WindowInfo OpenAbout() {
        fProgram.Start();
        ActivateBar();
        ChooseSetting(setting::kAbout);
        EXPECT_TRUE(AboutsBecome(1));
        const WindowInfo about = Abouts().at(0);
        EXPECT_TRUE(WaitUntil([&] { return fDesk.HasKeyboard(about.id); }));
        return about;
    }
    // Where the link is, on the screen.
    static std::pair<int, int> LinkIn(const WindowInfo& about) {
        return {about.frame.x + 25 + 86, about.frame.y + 20 + 78};
    }
};

TEST_F(AboutTest, OpensInTheMiddleWithALinkThatOpensAndIsCopied) {
    const WindowInfo about = OpenAbout();
    EXPECT_EQ(about.frame.width, 366);
    EXPECT_EQ(about.frame.height, 205);
    EXPECT_NEAR(about.frame.CenterX(), 640, 1);
    EXPECT_NEAR(about.frame.CenterY(), 450, 1);
    // Text and link are within their places: the columns and rows around them are the window's.
    fDesk.Settled(about.frame);
    const auto [linkX, linkY] = LinkIn(about);
    EXPECT_EQ(fDesk.Grab({linkX + 108, linkY, 2, 16}).Count(0xd8d8d8), 32u);
    const auto turns = [&, place = Box{linkX, linkY, 109, 16}](uint32_t color) {
        return WaitUntil([&] { return fDesk.Grab(place).Count(color) > 50; });
    };
    EXPECT_TRUE(turns(kBlue));

    // A press that moves by eleven pixels is no click.
    for (const int pixels : {11, 10}) {
        fDesk.MoveTo(linkX + 30, linkY + 9);
        EXPECT_TRUE(turns(kDarkBlue));
        fDesk.Press();
        EXPECT_TRUE(turns(kRed));
        fDesk.MoveTo(linkX + 30 + pixels, linkY + 9);
        fDesk.Release();
        fDesk.MoveTo(linkX + 30, linkY - 10);
        EXPECT_TRUE(turns(kBlue));
    }
    EXPECT_EQ(LastUrl(1), "http://quillbar.example/");
    fApps.Uninstall("browser");
    fDesk.Click(linkX + 30, linkY + 9);
    DismissAlert();
    Activate(about.id);

    fDesk.Click(linkX + 30, linkY + 9, 3);
    ASSERT_TRUE(MenusBecome(1));
    fDesk.Key(XK_End);
    fDesk.Key(XK_Return);
    ASSERT_TRUE(MenusBecome(0));
    Peer other(fDesk);
    EXPECT_TRUE(WaitUntil(
        [&] { return other.Ask("CLIPBOARD", "UTF8_STRING") == "http://quillbar.example/"; }));

    // Each request opens one more; closing one leaves the rest.
    OpenAddWindow();
    fDesk.KeyWith(XK_Alt_L, XK_a);
    EXPECT_TRUE(AboutsBecome(2));
    fDesk.Close(about.id);
    EXPECT_TRUE(AboutsBecome(1));
    EXPECT_TRUE(fProgram.IsRunning());
    // What was started in between has been written down by now.
    EXPECT_EQ(fApps.Launches().size(), 1u);
}

TEST_F(AboutTest, TheLinkBecomesAnotherBookmarkWithEachDrop) {
    Peer manager(fDesk, {1000, 600, 200, 200});
    const WindowInfo about = OpenAbout();
    const auto [linkX, linkY] = LinkIn(about);
    const std::string url = "http://quillbar.example/";
    // What a file manager gets that wants the file at that place.
    const auto saveAt = [&, x = linkX + 30, y = linkY + 9](const std::string& uri) {
        fDesk.MoveTo(x, y);
        fDesk.Press();
        fDesk.MoveTo(x, y + 40);
        fDesk.MoveTo(1100, 700);
        EXPECT_TRUE(manager.AwaitOver());
        fDesk.Release();
        EXPECT_TRUE(manager.AwaitDrop());
        EXPECT_EQ(manager.SaveName(), "http:--quillbar.example-");
        EXPECT_THAT(manager.OfferedTypes(),
                    ElementsAre("XdndDirectSave0", "text/x-moz-url", "UTF8_STRING",
                                "text/plain;charset=utf-8", "text/plain"));
        EXPECT_EQ(manager.Get("text/plain"), url);
        EXPECT_EQ(manager.Get("text/x-moz-url"), Utf16Of(url + "\n" + url));
        manager.SetSaveUri(uri);
        const auto answer = manager.Get("XdndDirectSave0");
        manager.Finish();
        return answer;
    };
    const std::string folder = "file://" + fHome.Path().string();
    for (const char* made : {"link", "link 2", "link 3"}) {
        EXPECT_EQ(saveAt(folder + "/link"), "S");
        EXPECT_EQ(GetAttribute(fHome.Path() / made, "META:url"), url + '\0') << made;
        EXPECT_EQ(GetAttribute(fHome.Path() / made, "META:title"), url + '\0') << made;
    }
    EXPECT_EQ(saveAt(folder + "/none/link"), "F");
    EXPECT_EQ(saveAt("file://other.example/tmp/link"), "F");
}

} // namespace

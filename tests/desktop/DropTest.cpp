// Colours and links that other programs drop on the bar.

#include <fstream>
#include <optional>
#include <sys/stat.h>

#include "base/Utf8.h"
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

// A link, in the forms in which browsers offer one.
class LinkDropTest : public DropTest {
protected:
    void StartWithFolder(int filled) {
        for (int slot = 0; slot < filled; slot++)
            AddBookmark(2, std::to_string(slot) + " - Old", "http://old/");
        fProgram.Start();
        partner.emplace(fDesk);
    }
    void Offer(const std::string& url, const std::string& title) {
        partner->offered = {{"text/x-moz-url", {Utf16Of(url + "\n" + title)}},
                            {"text/html", {"<a href=\"" + url + "\">" + title + "</a>"}},
                            {"UTF8_STRING", {url}}};
    }
    std::optional<bool> DropOn(const Box& part) {
        std::vector<std::string> types = {"TARGETS", "application/x-moz-nativeimage"};
        for (const auto& [type, data] : partner->offered)
            types.push_back(type);
        return partner->Drop(fProgram.Bar().id, part.CenterX(), part.CenterY(), types);
    }
    std::string UrlOf(const std::string& name) const {
        return GetAttribute(BookmarkPath(2, name), "META:url").value_or("none").c_str();
    }
    void Add() {
        fDesk.Key(XK_Return);
        EXPECT_TRUE(WaitUntil([&] { return fProgram.AddWindows().empty(); }));
    }
    // Below the folder's name: its line is more than the ground.
    bool HasNote(const Box& window) {
        const Picture line = fDesk.Grab({window.x + 22, window.y + 20 + 220 + 73, 200, 12});
        return line.Count(line.At(0, 0)) < line.pixels.size();
    }

    std::optional<Peer> partner;
};

TEST_F(LinkDropTest, BecomesABookmarkInTheFirstEmptySlotOrTheChosenOne) {
    StartWithFolder(3);
    Offer("https://a.example/b?c&d", "A/b \u2013 c\u00e9");
    EXPECT_EQ(DropOn(fProgram.Button(2)), true);
    Box window = WaitForAddWindow();
    EXPECT_FALSE(HasNote(window));
    fDesk.Key(XK_End);
    fDesk.Type("!");
    Add();
    EXPECT_EQ(UrlOf("3 - A-b \u2013 c\u00e9!"), "https://a.example/b?c&d");

    Offer("https://a.example/", std::string(4000, 'n'));
    EXPECT_EQ(DropOn(fProgram.DragBar()), true);
    window = WaitForAddWindow();
    ChooseLocation(window, 2, 1);
    EXPECT_TRUE(WaitUntil([&] { return HasNote(window); })) << "the slot is filled";
    ChooseSlotOf(window, 6);
    EXPECT_TRUE(WaitUntil([&] { return !HasNote(window); }));
    Add();
    EXPECT_EQ(UrlOf("6 - " + std::string(251, 'n')), "https://a.example/");
}

TEST_F(LinkDropTest, OnAFullFolderReplacesTheSlotThatIsChosen) {
    StartWithFolder(10);
    Offer("http://a.example/", "New");
    EXPECT_EQ(DropOn(fProgram.Button(2)), true);
    const Box window = WaitForAddWindow();
    EXPECT_TRUE(WaitUntil([&] { return HasNote(window); }));
    fDesk.Key(XK_Return);
    DismissAlert(); // no slot is chosen
    WaitForAddWindow();
    ChooseSlotOf(window, 7);
    Add();
    EXPECT_EQ(UrlOf("7 - New"), "http://a.example/");
    EXPECT_FALSE(std::filesystem::exists(BookmarkPath(2, "7 - Old")));
    EXPECT_EQ(UrlOf("6 - Old"), "http://old/");
}

TEST_F(LinkDropTest, LightsTheButtonUnderIt) {
    StartWithFolder(0);
    const xcb_window_t bar = fProgram.Bar().id;
    const Box three = fProgram.Button(3);
    const Box four = fProgram.Button(4);
    const Picture dark = fDesk.Settled(three);
    const auto isLit = [&](const Box& button) {
        return fDesk.Pixel(button.x + 3, button.y + 3) != dark.At(3, 3);
    };
    const auto isTakenOver = [&](const Box& button) {
        partner->Move(bar, button.CenterX(), button.CenterY());
        return partner->AwaitStatus().value_or(false);
    };
    partner->Own("XdndSelection");
    // Not by what is refused.
    Offer("javascript:alert(1)", "Bad");
    partner->Enter(bar, {"text/x-moz-url", "UTF8_STRING", "text/html"});
    EXPECT_FALSE(isTakenOver(three));
    EXPECT_FALSE(isLit(three));
    partner->Leave(bar);
    Offer("http://a.example/", "New");
    partner->Enter(bar, {"text/x-moz-url"});
    EXPECT_TRUE(isTakenOver(three));
    EXPECT_TRUE(WaitUntil([&] { return isLit(three) && !isLit(four); }));
    EXPECT_TRUE(isTakenOver(four));
    EXPECT_TRUE(WaitUntil([&] { return isLit(four) && !isLit(three); }));
    partner->Leave(bar);
    EXPECT_TRUE(WaitUntil([&] { return !isLit(four); }));
    // Nor for good by a program that dies.
    partner->Enter(bar, {"text/x-moz-url"});
    EXPECT_TRUE(isTakenOver(three));
    EXPECT_TRUE(WaitUntil([&] { return isLit(three); }));
    partner.reset();
    EXPECT_TRUE(WaitUntil([&] { return !isLit(three); }));
    EXPECT_TRUE(fProgram.AddWindows().empty());
}

TEST_F(LinkDropTest, DoesNotTakeAwayWhatIsTyped) {
    StartWithFolder(1);
    const Box window = OpenAddWindow();
    ChooseLocation(window, 2, 4);
    fDesk.Type("Mine");
    Offer("http://a.example/", "New");
    EXPECT_EQ(DropOn(fProgram.Button(3)), true);
    DismissAlert(); // which asks, and would keep
    WaitForAddWindow();
    Add();
    EXPECT_EQ(UrlOf("4 - Mine"), "");
    OpenAddWindow();
    fDesk.Type("Mine");
    EXPECT_EQ(DropOn(fProgram.Button(2)), true);
    ASSERT_TRUE(AlertOpens());
    Activate(fProgram.Alerts()[0].id);
    fDesk.Key(XK_Tab);
    fDesk.Key(XK_space);
    WaitForAddWindow();
    // Nothing was typed since.
    Offer("http://b.example/", "Newer");
    const Box name = {window.x + 75, window.y + 50, 200, 20};
    const Picture before = fDesk.Settled(name);
    EXPECT_EQ(DropOn(fProgram.Button(2)), true);
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Grab(name) != before; }));
    Add();
    EXPECT_EQ(UrlOf("1 - Newer"), "http://b.example/");
    EXPECT_FALSE(std::filesystem::exists(BookmarkPath(2, "1 - New")));
}

TEST_F(LinkDropTest, OfAFileIsReadInIt) {
    StartWithFolder(1);
    const std::filesystem::path files = fHome.Path() / "my files";
    std::filesystem::create_directories(files);
    const auto drop = [&](const std::string& name, const std::string& content) {
        std::ofstream(files / name) << content;
        const std::string path = fHome.Path() / "my%20files" / name;
        partner->offered = {{"text/uri-list", {"file://" + path + "\r\n"}}};
        return DropOn(fProgram.Button(2));
    };
    EXPECT_EQ(drop("a.desktop", "[Desktop Entry]\nType=Link\nName=Desk\nURL=http://desk/\n"), true);
    WaitForAddWindow();
    Add();
    EXPECT_EQ(UrlOf("1 - Desk"), "http://desk/");
    EXPECT_EQ(drop("p.desktop", "[Desktop Entry]\nType=Application\nExec=true\n"), true);
    DismissAlert(); // there is no address in it
    std::filesystem::create_directory(files / "d.url");
    mkfifo((files / "f.url").c_str(), 0600);
    for (const char* name : {"d.url", "f.url", "none.url"}) {
        partner->offered["text/uri-list"] = {"file://" + fHome.Path().string() + "/my%20files/" +
                                             name};
        EXPECT_EQ(DropOn(fProgram.DragBar()), true);
        DismissAlert();
    }
    EXPECT_TRUE(fProgram.AddWindows().empty());
}

} // namespace

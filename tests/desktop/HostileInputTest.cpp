// Files and settings that nobody meant to be there: nothing crashes, hangs or is lost.

#include <csignal>
#include <fstream>
#include <limits>
#include <sys/stat.h>

#include "tests/desktop/DesktopTest.h"

using namespace test;
namespace fs = std::filesystem;

namespace {

class HostileInputTest : public DesktopTest {
protected:
    void RestartWith(const std::string& settings) {
        std::ofstream(fProgram.SettingsFile(), std::ios::binary) << settings;
        fProgram.Start();
        EXPECT_TRUE(fDesk.Frame().Contains(fProgram.Content()));
        EXPECT_EQ(fProgram.StartAgain(), 0);
        EXPECT_EQ(fProgram.Stop(), 0);
        BPoint place;
        EXPECT_EQ(B_OK, fProgram.Settings().FindPoint("pos", &place));
    }
};

TEST_F(HostileInputTest, SettingsOfNoMeaning) {
    for (const std::string& settings : {std::string("{\"what\":"), std::string(3 << 20, '[')})
        RestartWith(settings);
    const float huge = std::numeric_limits<float>::max();
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (const BPoint place : {BPoint(huge, -huge), BPoint(none, none), BPoint(5000, 5000)}) {
        BMessage settings;
        settings.AddPoint("pos", place);
        for (const char* name : {"align", "browser", "hotkey", "ontop"})
            settings.AddInt32(name, std::numeric_limits<int32>::min());
        settings.AddString("url", "yes");
        settings.AddString("color", std::string(1000, 'x').c_str());
        std::string text;
        settings.Flatten(&text);
        RestartWith(text);
    }
}

TEST_F(HostileInputTest, OddThingsInTheFolders) {
    const fs::path folder = BookmarkPath(1, "x").parent_path();
    fs::create_directories(folder);
    const auto bookmark = [&](const std::string& name) {
        MakeBookmark(folder / name, "http://odd.example/");
    };
    bookmark("0 - \xff\xfe not UTF-8");
    bookmark("1 - new\nline\ttab \x1b[31m");
    bookmark("2 - " + std::string(251, 'w'));
    bookmark("3 -");
    fs::create_directories(folder / "4 - Folder");
    SetAttribute(folder / "4 - Folder", "mime_type", kBookmarkType);
    mkfifo((folder / "5 - Pipe").c_str(), 0600);
    mknod((folder / "6 - Socket").c_str(), S_IFSOCK | 0600, 0);
    fs::create_symlink("nowhere", folder / "7 - Dangling");
    fs::create_symlink("8 - Loop", folder / "8 - Loop");
    mkfifo((fProgram.Root() / "9 - Pipe").c_str(), 0600);
    fs::create_symlink(fProgram.Root(), fProgram.Root() / "8 - Circle");

    fProgram.Start();
    const FolderMenu menu = OpenFolder(1);
    EXPECT_TRUE(fDesk.Frame().Contains(menu.Frame()));
    for (int slot = 0; slot < 9; ++slot)
        EXPECT_EQ(menu.SameLabel(slot, 9), slot > 3) << slot;
    const Box place = menu.Slot(2);
    fDesk.Click(place.CenterX(), place.CenterY());
    EXPECT_EQ(LastUrl(1), "http://odd.example/");

    // The same while it runs.
    mkfifo((folder / "9 - Late pipe").c_str(), 0600);
    AddBookmark(1, "6 - After the pipe", "http://after.example/");
    EXPECT_TRUE(SlotBecomes(1, 6, true));
}

TEST_F(HostileInputTest, OddAttributes) {
    const auto path = [&](int slot) { return BookmarkPath(1, std::to_string(slot) + " - A"); };
    for (int slot = 0; slot < 4; ++slot)
        AddBookmark(1, std::to_string(slot) + " - A", "x");
    SetAttribute(path(0), "META:url", "");
    SetAttribute(path(1), "META:url", "http://no.nul.example/");
    SetAttribute(path(2), "META:url", std::string("http://after\0nul", 16));
    SetAttribute(path(3), "META:url", "http://" + std::string(3000, 'e'));
    SetAttribute(path(3), "META:keyw", std::string(500, '\xff'));

    fProgram.Start();
    EXPECT_TRUE(fDesk.Frame().Contains(OpenFolder(1).Frame()));
    CloseMenus();
    ChooseSlot(1, 1);
    EXPECT_EQ(LastUrl(1), "http://no.nul.example/");
    ChooseSlot(1, 2);
    EXPECT_EQ(LastUrl(2), "http://after");
    ChooseSlot(1, 3);
    EXPECT_EQ(LastUrl(3), "http://" + std::string(3000, 'e'));
}

// The error alert, and the end when it is dismissed: without bookmarks there is no bar.
TEST_F(HostileInputTest, ARootThatCannotBeRead) {
    fs::create_directories(fProgram.Root());
    fs::permissions(fProgram.Root(), fs::perms::none);
    fProgram.Launch(true);
    ASSERT_TRUE(AlertOpens()) << fProgram.Errors();
    fProgram.Signal(SIGTERM);
    EXPECT_EQ(fProgram.WaitForEnd(std::chrono::seconds(5)), EXIT_FAILURE);
}

} // namespace

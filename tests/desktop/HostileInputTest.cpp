// Files and settings that nobody meant to be there: nothing crashes, hangs or is lost.

#include <csignal>
#include <fstream>
#include <limits>
#include <sys/stat.h>

#include "tests/desktop/DesktopTest.h"

using namespace test;
namespace fs = std::filesystem;

namespace {

class HostileInputTest : public DesktopTest {};

TEST_F(HostileInputTest, SettingsOfNoMeaning) {
    std::vector<std::string> cases = {"{\"what\":", std::string(3 << 20, '[')};
    const float huge = std::numeric_limits<float>::max();
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (const BPoint place : {BPoint(huge, -huge), BPoint(none, none), BPoint(5000, 5000)}) {
        BMessage settings;
        settings.AddPoint("pos", place);
        for (const char* name : {"align", "browser", "hotkey", "ontop"})
            settings.AddInt32(name, std::numeric_limits<int32>::min());
        settings.AddString("url", "yes");
        settings.AddString("color", std::string(1000, 'x').c_str());
        settings.Flatten(&cases.emplace_back());
    }
    BMessage words; // of another type than is meant; they stay
    for (const char* name : {"browser", "pos", "align", "url", "ontop", "color"})
        words.AddString(name, "text");
    words.AddInt32("hotkey", 8);
    words.Flatten(&cases.emplace_back());
    for (const std::string& settings : cases) {
        const bool isWhole = BMessage().Unflatten(settings.data(), settings.size()) == B_OK;
        std::ofstream(fProgram.SettingsFile(), std::ios::binary) << settings;
        fProgram.Start();
        EXPECT_TRUE(fDesk.Frame().Contains(fProgram.Content()));
        ActivateBar();
        ChooseSetting(setting::kUseOpera);
        EXPECT_EQ(fProgram.Stop(), 0);
        EXPECT_TRUE(fProgram.Settings().HasData("pos", B_POINT_TYPE) != (settings == cases.back()));
        const fs::path aside = fProgram.SettingsFile() += ".bad";
        EXPECT_EQ(fs::exists(aside) ? fs::file_size(aside) : 0, isWhole ? 0 : settings.size());
        fs::remove(aside);
    }
    EXPECT_EQ(Program::TextIn(fProgram.SettingsFile()), cases.back());
}

TEST_F(HostileInputTest, OddFilesAndAttributes) {
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
    fs::create_symlink("7 - Loop", folder / "7 - Loop");
    mkfifo((fProgram.Root() / "9 - Pipe").c_str(), 0600);
    fs::create_symlink(fProgram.Root(), fProgram.Root() / "8 - Circle");
    for (const char* name : {"1 - Open", "2 - Ended"})
        AddBookmark(2, name, "x");
    SetAttribute(BookmarkPath(2, "1 - Open"), "META:url", "http://no.nul.example/");
    SetAttribute(BookmarkPath(2, "2 - Ended"), "META:url", std::string("http://after\0nul", 16));
    SetAttribute(BookmarkPath(2, "2 - Ended"), "META:keyw", std::string(500, '\xff'));

    fProgram.Start();
    const FolderMenu menu = OpenFolder(1);
    EXPECT_TRUE(fDesk.Frame().Contains(menu.Frame()));
    for (int slot = 0; slot < 9; ++slot)
        EXPECT_EQ(menu.Label(slot) == menu.Label(9), slot > 3) << slot;
    Click(menu.Slot(2));
    EXPECT_EQ(LastUrl(1), "http://odd.example/");
    ChooseSlot(2, 1);
    EXPECT_EQ(LastUrl(2), "http://no.nul.example/");
    ChooseSlot(2, 2);
    EXPECT_EQ(LastUrl(3), "http://after");

    // The same while it runs.
    mkfifo((folder / "9 - Late pipe").c_str(), 0600);
    AddBookmark(1, "6 - After the pipe", "http://after.example/");
    EXPECT_TRUE(SlotBecomes(1, 6, true));
}

// As a user whom permissions keep out.
TEST_F(HostileInputTest, RightsThatAreGivenBackBringTheSlotBack) {
    const fs::path file = BookmarkPath(1, "2 - A");
    MakeBookmark(file, "http://a.example/");
    fProgram.Launch(true);
    ASSERT_TRUE(fProgram.WaitForBar());
    fs::permissions(file, fs::perms::none);
    EXPECT_TRUE(SlotBecomes(1, 2, false));
    fs::permissions(file, fs::perms(0644));
    EXPECT_TRUE(SlotBecomes(1, 2, true));
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

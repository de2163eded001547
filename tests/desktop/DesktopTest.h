#pragma once

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include "tests/desktop/Program.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/RecordedApps.h"

// A menu that is open, read from the screen. Nothing but pixels shows what is in it, so the height
// of an item is that of the mark under the pointer.
class FolderMenu {
public:
    // Waits until the program's newest menu is painted. Moves the pointer.
    FolderMenu(test::Desk& desk, const Program& program);

    const test::Box& Frame() const { return fFrame; }
    test::Box Slot(int digit) const; // on the screen
    test::Picture Label(int digit) const;

private:
    test::Box fFrame;
    test::Picture fPicture; // without a mark
    int fHeight = 0;        // of an item
    int fBottom = 0;        // of the last item, in the menu
};

// A home folder with a default browser and Opera in it, and the program, which a test starts
// itself. What still runs at the end is asked to quit and must end with status 0.
class DesktopTest : public testing::Test {
protected:
    explicit DesktopTest(test::Desk& desk = test::Desk::Shared())
        : fDesk(desk) {}

    void SetUp() override;
    void TearDown() override;

    std::filesystem::path BookmarkPath(int folder, const std::string& name) const;
    void AddBookmark(int folder, const std::string& name, const std::string& url) const;

    void Activate(xcb_window_t window);
    void ActivateBar() { Activate(fProgram.Bar().id); }
    // At the middle of a place on the screen.
    void PointAt(const test::Box& place);
    void Click(const test::Box& place, int button = 1);
    FolderMenu OpenFolder(int digit);
    void ChooseSlot(int folder, int slot);
    // Waits until that many menus are open, one of them inside the other, and get the keys: a menu
    // is on the screen before it has grabbed the keyboard, and off it before it lets go.
    bool MenusBecome(size_t count, std::chrono::milliseconds deadline = test::kDeadline);
    void CloseMenus();
    // Opens a folder's menu and closes it: what happened before has been handled then.
    void ExpectButtonWorks(int digit = 1);

    // Opens the settings menu with the secondary button, goes down by the arrow key that many
    // times and presses Enter; with `inside`, opens that item's sub-menu and does the same there.
    void OpenSettings();
    void ChooseSetting(int downs, int inside = 0);
    bool AlertOpens();
    void DismissAlert();

    // The place of the Add Bookmark window, which is opened, or waited for, and has the keyboard;
    // its name field is typed into first. (A click and a key after it may change places: the window
    // manager holds the click for a moment.)
    test::Box OpenAddWindow();
    test::Box WaitForAddWindow();
    // Whether `work` changes the location that the window shows: text that is typed before a choice
    // is shown would be replaced by it.
    bool LocationChangesIn(const test::Box& window, const std::function<void()>& work);
    void ChooseLocation(const test::Box& window, int folder, int slot);
    void ChooseSlotOf(const test::Box& window, int slot);

    // Opens and closes the folder's menu until its slot shows a bookmark, or shows none.
    bool SlotBecomes(int folder, int slot, bool filled);
    // What the browser was last started with.
    std::string LastUrl(size_t launches) const;

    test::Desk& fDesk;
    test::TemporaryHome fHome;
    test::RecordedApps fApps{fHome};
    Program fProgram{fDesk, fHome};
};

struct OwnDesktop {
    test::Desk fOwn;
};

// On a desktop of its own, unlike the usual one or to be lost.
class OwnDesktopTest : protected OwnDesktop, public DesktopTest {
protected:
    explicit OwnDesktopTest(const test::Desk::Options& options)
        : OwnDesktop{test::Desk(options)}
        , DesktopTest(fOwn) {}
};

// How often the arrow key goes down to the entries of the settings menu when both browsers are
// there.
namespace setting {
enum {
    kAlignHorizontally = 1,
    kAlignVertically,
    kUseOpera,
    kUseNetPositive,
    kAddBookmark,
    kShowUrl,
    kHotKey,
    kAlwaysOnTop,
    kAbout,
    kQuit,
};
enum { kYes = 1, kNo };
enum { kAltKey = 1, kShiftKey, kControlKey, kWindowsKey, kMenuKey, kDeleteKey };
} // namespace setting

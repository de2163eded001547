#include "tests/desktop/DesktopTest.h"

#include <iostream>
#include <stdexcept>

using namespace test;

FolderMenu::FolderMenu(Desk& desk, const Program& program) {
    if (!WaitUntil([&] { return !program.Menus().empty(); }))
        throw std::runtime_error("no menu opened");
    fFrame = program.Menus().back().frame;
    constexpr uint32_t kMark = 0x989898;
    const int column = fFrame.width - 5;
    const int row = fFrame.height - 5;
    desk.MoveTo(fFrame.x + column, fFrame.y + row);
    const auto isMarked = [&](int y) { return fPicture.At(column, y) == kMark; };
    const auto look = [&] {
        fPicture = desk.Settled(fFrame);
        return isMarked(row);
    };
    if (!WaitUntil(look))
        throw std::runtime_error("the menu does not mark the item under the pointer");
    int top = row;
    while (top > 0 && isMarked(top))
        --top;
    for (fBottom = row; fBottom < fFrame.height && isMarked(fBottom);)
        ++fBottom;
    fHeight = fBottom - top - 1;
    desk.MoveTo(0, desk.Frame().height - 1);
    WaitUntil([&] { return !look(); });
}

Box FolderMenu::Slot(int digit) const {
    return {fFrame.x, fFrame.y + fBottom - (10 - digit) * fHeight, fFrame.width, fHeight};
}

Picture FolderMenu::Label(int digit) const {
    const Box slot = Slot(digit);
    const std::ptrdiff_t width = slot.width;
    const auto first = fPicture.pixels.begin() + (slot.y - fFrame.y) * width;
    return {slot.width, slot.height, {first, first + slot.height * width}};
}

void DesktopTest::SetUp() {
    fApps.InstallBrowser();
    fApps.Install("opera");
    fDesk.MoveTo(fDesk.Frame().width - 2, fDesk.Frame().height - 2);
}

void DesktopTest::TearDown() {
    if (HasFailure())
        std::cerr << fProgram.Errors();
    if (fProgram.IsRunning()) {
        EXPECT_EQ(fProgram.Stop(), 0) << fProgram.Errors();
    }
}

std::filesystem::path DesktopTest::BookmarkPath(int folder, const std::string& name) const {
    return fProgram.Root() / (std::to_string(folder) + " - Folder") / name;
}

void DesktopTest::AddBookmark(int folder, const std::string& name, const std::string& url) const {
    MakeBookmark(BookmarkPath(folder, name), url);
}

void DesktopTest::Activate(xcb_window_t window) {
    fDesk.Activate(window);
    ASSERT_TRUE(WaitUntil([&] { return fDesk.HasKeyboard(window); }));
}

void DesktopTest::PointAt(const Box& place) {
    fDesk.MoveTo(place.CenterX(), place.CenterY());
}

void DesktopTest::Click(const Box& place, int button) {
    fDesk.Click(place.CenterX(), place.CenterY(), button);
}

FolderMenu DesktopTest::OpenFolder(int digit) {
    Click(fProgram.Button(digit));
    return FolderMenu(fDesk, fProgram);
}

void DesktopTest::ChooseSlot(int folder, int slot) {
    Click(OpenFolder(folder).Slot(slot));
    EXPECT_TRUE(MenusBecome(0));
}

bool DesktopTest::MenusBecome(size_t count, std::chrono::milliseconds deadline) {
    return WaitUntil(
        [&] {
            return fProgram.Menus().size() == count && fDesk.IsKeyboardGrabbed() == (count > 0);
        },
        deadline);
}

void DesktopTest::CloseMenus() {
    fDesk.Key(XK_Escape);
    ASSERT_TRUE(MenusBecome(0));
}

void DesktopTest::ExpectButtonWorks(int digit) {
    Click(fProgram.Button(digit));
    ASSERT_TRUE(MenusBecome(1));
    CloseMenus();
}

void DesktopTest::OpenSettings() {
    const Box bar = fProgram.DragBar();
    fDesk.Click(bar.x + bar.width - 2, bar.y + bar.height - 2, 3);
    ASSERT_TRUE(MenusBecome(1));
    fDesk.Settled(fProgram.Menus()[0].frame);
}

void DesktopTest::ChooseSetting(int downs, int inside) {
    OpenSettings();
    for (int i = 0; i < downs; ++i)
        fDesk.Key(XK_Down);
    if (inside > 0) {
        fDesk.Key(XK_Right);
        ASSERT_TRUE(MenusBecome(2));
        // The first item is marked when a sub-menu was opened by the keyboard.
        for (int i = 1; i < inside; ++i)
            fDesk.Key(XK_Down);
    }
    fDesk.Key(XK_Return);
    ASSERT_TRUE(MenusBecome(0));
}

bool DesktopTest::AlertOpens() {
    return WaitUntil([&] { return !fProgram.Alerts().empty(); });
}

void DesktopTest::DismissAlert() {
    ASSERT_TRUE(AlertOpens());
    Activate(fProgram.Alerts()[0].id);
    fDesk.Key(XK_Return);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.Alerts().empty(); }));
}

Box DesktopTest::WaitForAddWindow() {
    Box place;
    EXPECT_TRUE(WaitUntil([&] {
        const auto windows = fProgram.AddWindows();
        if (windows.size() != 1 || !fDesk.HasKeyboard(windows[0].id))
            return false;
        place = windows[0].frame;
        return true;
    }));
    fDesk.Settled(place);
    return place;
}

Box DesktopTest::OpenAddWindow() {
    ActivateBar();
    fDesk.Key(XK_minus);
    return WaitForAddWindow();
}

bool DesktopTest::LocationChangesIn(const Box& window, const std::function<void()>& work) {
    const Box box = {window.x + 10, window.y + 240, 310, 90};
    const Picture before = fDesk.Settled(box);
    work();
    return WaitUntil([&] { return fDesk.Grab(box) != before; });
}

void DesktopTest::ChooseLocation(const Box& window, int folder, int slot) {
    EXPECT_TRUE(LocationChangesIn(
        window, [&] { fDesk.KeyWith(XK_Alt_L, XK_0 + static_cast<uint32_t>(folder)); }));
    ChooseSlotOf(window, slot);
}

void DesktopTest::ChooseSlotOf(const Box& window, int slot) {
    EXPECT_TRUE(LocationChangesIn(window, [&] {
        fDesk.KeyDown(XK_Shift_L);
        // As well as Alt, which some window managers keep to themselves.
        fDesk.KeyWith(XK_Control_L, XK_0 + static_cast<uint32_t>(slot));
        fDesk.KeyUp(XK_Shift_L);
    }));
}

// The slots that are empty all look the same; slot 9 of the folder must be one of them.
bool DesktopTest::SlotBecomes(int folder, int slot, bool filled) {
    return WaitUntil([&] {
        const FolderMenu menu = OpenFolder(folder);
        CloseMenus();
        return (menu.Label(slot) != menu.Label(9)) == filled;
    });
}

std::string DesktopTest::LastUrl(size_t launches) const {
    const auto all = fApps.WaitForLaunches(launches);
    if (all.size() != launches || all.back().arguments.size() != 1)
        return "";
    return all.back().arguments[0];
}

#include "tests/kits/interface/MenuDesktop.h"

#include <cstdlib>

#include "kits/interface/window/WindowRoster.h"

using test::Box;
using test::WaitUntil;
using test::WindowInfo;

namespace {

uint32_t Rgb(rgb_color color) {
    return uint32_t{color.red} << 16 | uint32_t{color.green} << 8 | color.blue;
}

} // namespace

MessageCatcher* MessageCatcher::Start() {
    auto* catcher = new MessageCatcher;
    catcher->Run();
    return catcher;
}

void MessageCatcher::MessageReceived(BMessage* message) {
    fCaught.push_back(*message);
}

std::vector<BMessage> MessageCatcher::WaitFor(size_t count) {
    WaitUntil([&] { return Caught().size() >= count; });
    return Caught();
}

std::vector<BMessage> MessageCatcher::Caught() {
    Lock();
    std::vector<BMessage> caught = fCaught;
    Unlock();
    return caught;
}

MenuTest::~MenuTest() {
    WindowRoster::Shared().CancelMenu();
    if (fAnswer.valid())
        fAnswer.wait();
}

BMenuItem* MenuTest::Add(BMenu& to, const std::string& label, uint32 what) {
    auto* item = new BMenuItem(label.c_str(), new BMessage(what));
    to.AddItem(item);
    return item;
}

void MenuTest::AddThree() {
    for (const char* label : {"One", "Two", "Three"})
        Add(label);
}

BMenu* MenuTest::AddSubmenu(const std::string& label, int count) {
    auto* submenu = new BMenu(label.c_str());
    for (int i = 0; i < count; i++)
        Add(*submenu, "Below " + std::to_string(i));
    menu.AddItem(submenu);
    return submenu;
}

void MenuTest::Open(int x, int y, bool deliversMessage) {
    // The server may still show the last one after the answer of Go() was seen.
    ASSERT_TRUE(WaitForMenus(0));
    fAnswer = std::async(std::launch::async, [=, this] {
        return menu.Go(BPoint(static_cast<float>(x), static_cast<float>(y)), deliversMessage, true);
    });
    ASSERT_TRUE(WaitForMenus(1));
}

BMenuItem* MenuTest::Answer() {
    if (fAnswer.wait_for(test::kDeadline) != std::future_status::ready) {
        ADD_FAILURE() << "the menu is still open";
        WindowRoster::Shared().CancelMenu();
    }
    return fAnswer.get();
}

std::vector<WindowInfo> MenuTest::Menus() {
    return screen.Shown("POPUP_MENU");
}

bool MenuTest::WaitForMenus(size_t count) {
    return WaitUntil([&] { return Menus().size() == count; });
}

Box MenuTest::Place(const BMenuItem* item) {
    Box place;
    if (!BMessenger(item->Menu()).LockTarget()) {
        ADD_FAILURE() << item->Label() << " is not on the screen";
        return place;
    }
    const BRect frame = item->Menu()->ConvertToScreen(item->Frame());
    item->Menu()->Window()->Unlock();
    return {static_cast<int>(frame.left), static_cast<int>(frame.top),
            static_cast<int>(frame.Width()) + 1, static_cast<int>(frame.Height()) + 1};
}

void MenuTest::PointAt(const BMenuItem* item) {
    const Box place = Place(item);
    robot.MoveTo(place.CenterX(), place.CenterY());
}

void MenuTest::Click(const BMenuItem* item, int button) {
    PointAt(item);
    robot.Press(button);
    robot.Release(button);
}

bool MenuTest::IsHighlighted(const BMenuItem* item) {
    const Box place = Place(item);
    return screen.Pixel(place.x + 2, place.y + 2) ==
           Rgb(ui_color(B_MENU_SELECTION_BACKGROUND_COLOR));
}

bool MenuTest::WaitForHighlight(const BMenuItem* item) {
    return WaitUntil([&] { return IsHighlighted(item); });
}

bool MenuTest::IsInputFree() {
    // The server may hear of the release only after the answer of Go() was seen.
    return WaitUntil([&] { return TakeInput(); });
}

bool MenuTest::TakeInput() {
    xcb_connection_t* connection = desktop.Connection();
    const auto pointer =
        xcb_grab_pointer(connection, 0, desktop.Root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                         XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const auto keyboard = xcb_grab_keyboard(connection, 0, desktop.Root(), XCB_CURRENT_TIME,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    auto* pointerReply = xcb_grab_pointer_reply(connection, pointer, nullptr);
    auto* keyboardReply = xcb_grab_keyboard_reply(connection, keyboard, nullptr);
    const bool isFree = pointerReply && pointerReply->status == XCB_GRAB_STATUS_SUCCESS &&
                        keyboardReply && keyboardReply->status == XCB_GRAB_STATUS_SUCCESS;
    free(pointerReply);
    free(keyboardReply);
    xcb_ungrab_pointer(connection, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    desktop.Sync();
    return isFree;
}

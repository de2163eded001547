#pragma once

#include <future>

#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/window/WindowRoster.h"
#include "tests/kits/interface/InterfaceTest.h"

// A desk with one menu that is not open yet.
class MenuTest : public InterfaceTest {
protected:
    ~MenuTest() override {
        WindowRoster::Shared().CancelMenu();
        if (fAnswer.valid())
            fAnswer.wait();
    }

    static void Add(BMenu& to, const std::string& label) {
        to.AddItem(new BMenuItem(label.c_str(), new BMessage('item')));
    }
    void AddThree() {
        for (const char* label : {"One", "Two", "Three"})
            Add(menu, label);
    }
    // A sub-menu with as many items.
    BMenu* AddSubmenu(int count) {
        auto* submenu = new BMenu("Sub");
        for (int i = 0; i < count; i++)
            Add(*submenu, "Below " + std::to_string(i));
        menu.AddItem(submenu);
        return submenu;
    }

    // Calls Go() on a thread of its own and waits until the menu is on the screen.
    void Open(float x = 100, float y = 100) {
        // The server may still show the last one after the answer of Go() was seen.
        ASSERT_TRUE(WaitForMenus(0));
        fAnswer = std::async(std::launch::async, [=, this] { return menu.Go({x, y}, true, true); });
        ASSERT_TRUE(WaitForMenus(1));
    }
    // What Go() answered; waits for it.
    BMenuItem* Answer() {
        EXPECT_EQ(fAnswer.wait_for(test::kDeadline), std::future_status::ready);
        WindowRoster::Shared().CancelMenu();
        return fAnswer.get();
    }

    // With the window of an open menu locked; false if the menu is not open.
    static bool InMenu(BMenu* menu, const std::function<void()>& action) {
        if (!BMessenger(menu).LockTarget())
            return false;
        action();
        menu->Window()->Unlock();
        return true;
    }
    static bool WaitForOpen(BMenu* menu) {
        return test::WaitUntil([&] { return InMenu(menu, [] {}); });
    }
    // Where an item of an open menu is on the screen, in pixels.
    static test::Box Place(const BMenuItem* item) {
        BRect frame;
        EXPECT_TRUE(InMenu(item->Menu(), [&] {
            frame = item->Menu()->ConvertToScreen(item->Frame());
        })) << item->Label();
        return {static_cast<int>(frame.left), static_cast<int>(frame.top),
                static_cast<int>(frame.Width()) + 1, static_cast<int>(frame.Height()) + 1};
    }
    void PointAt(const BMenuItem* item) {
        const test::Box place = Place(item);
        desk.MoveTo(place.CenterX(), place.CenterY());
    }
    void Click(const BMenuItem* item, int button = 1) {
        PointAt(item);
        desk.Press(button);
        desk.Release(button);
    }
    bool WaitForHighlight(const BMenuItem* item) {
        const rgb_color color = ui_color(B_MENU_SELECTION_BACKGROUND_COLOR);
        const uint32_t pixel = uint32_t{color.red} << 16 | uint32_t{color.green} << 8 | color.blue;
        return test::WaitUntil([&] {
            const test::Box place = Place(item);
            return desk.Pixel(place.x + 2, place.y + 2) == pixel;
        });
    }

    BPopUpMenu menu{"menu", false, false};

private:
    std::future<BMenuItem*> fAnswer;
};

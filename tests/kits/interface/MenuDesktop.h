#pragma once

#include <future>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "tests/kits/interface/InterfaceTest.h"

// A looper that keeps the messages it gets.
class MessageCatcher : public BLooper {
public:
    static MessageCatcher* Start();
    void MessageReceived(BMessage* message) override;
    // Waits until at least `count` came. All that came so far.
    std::vector<BMessage> WaitFor(size_t count);
    std::vector<BMessage> Caught();

private:
    std::vector<BMessage> fCaught;
};

// A desktop with one menu that is not open yet.
class MenuTest : public InterfaceTest {
protected:
    ~MenuTest() override;

    BMenuItem* Add(const std::string& label, uint32 what = 'item') {
        return Add(menu, label, what);
    }
    BMenuItem* Add(BMenu& to, const std::string& label, uint32 what = 'item');
    // "One", "Two" and "Three".
    void AddThree();
    // A sub-menu with as many items, "Below 0" and so on.
    BMenu* AddSubmenu(const std::string& label, int count);

    // Calls Go() on a thread of its own and waits until the menu is on the screen.
    void Open(int x = 100, int y = 100, bool deliversMessage = false);
    // What Go() answered; waits for it.
    BMenuItem* Answer();

    // Menus on the screen; waits until there are so many.
    std::vector<test::WindowInfo> Menus();
    bool WaitForMenus(size_t count);

    // Where an item of an open menu is on the screen, in pixels.
    test::Box Place(const BMenuItem* item);
    void PointAt(const BMenuItem* item);
    void Click(const BMenuItem* item, int button = 1);
    bool IsHighlighted(const BMenuItem* item);
    bool WaitForHighlight(const BMenuItem* item);

    // Whether another program can have pointer and keyboard; waits for it.
    bool IsInputFree();

    BPopUpMenu menu{"menu", false, false};

private:
    bool TakeInput();

    std::future<BMenuItem*> fAnswer;
};

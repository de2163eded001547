#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "tests/support/PrivateDesktop.h"

namespace test {

// Moves the pointer and presses keys and buttons through the XTEST extension, as a person would.
// When a function returns, the server has sent the events. What is still down when the robot goes
// is released. Keys are named by keysym (XK_… of X11/keysym.h): the key that carries it on any of
// its levels is pressed, so XK_KP_3 is the keypad's 3 whatever Num Lock says.
class Robot {
public:
    explicit Robot(PrivateDesktop& desktop);
    ~Robot();

    void MoveTo(int x, int y);
    void Press(int button = 1);
    void Release(int button = 1);
    void Click(int x, int y, int button = 1);
    // With the pause of a quick hand: of two clicks in no time the window manager, which holds
    // each press back for a moment, swallows the second now and then.
    void DoubleClick(int x, int y, int button = 1);
    // Once more where the pointer is, with the same pause before it.
    void PressAgain(int button = 1);
    // Presses at the first point, moves in `steps` steps to the second, releases.
    void Drag(int fromX, int fromY, int toX, int toY, int button = 1, int steps = 8);

    void KeyDown(uint32_t keysym);
    void KeyUp(uint32_t keysym);
    void Key(uint32_t keysym);
    // Latin-1 text, with Shift where a character needs it.
    void Type(const std::string& text);

private:
    struct KeyPlace {
        uint8_t code = 0;
        int level = 0;
    };
    KeyPlace Find(uint32_t keysym) const;
    void Send(uint8_t type, uint8_t detail, int x = 0, int y = 0);

    PrivateDesktop& fDesktop;
    std::set<uint8_t> fKeys;
    std::set<uint8_t> fButtons;
};

} // namespace test

#include "tests/support/Robot.h"

#include <X11/keysym.h>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <xcb/xtest.h>

namespace test {

namespace {

constexpr std::chrono::milliseconds kPauseOfHand(40);

} // namespace

Robot::Robot(PrivateDesktop& desktop)
    : fDesktop(desktop) {}

Robot::~Robot() {
    for (const uint8_t key : std::set(fKeys))
        Send(XCB_KEY_RELEASE, key);
    for (const uint8_t button : std::set(fButtons))
        Send(XCB_BUTTON_RELEASE, button);
}

void Robot::MoveTo(int x, int y) {
    Send(XCB_MOTION_NOTIFY, 0, x, y);
}

void Robot::Press(int button) {
    fButtons.insert(static_cast<uint8_t>(button));
    Send(XCB_BUTTON_PRESS, static_cast<uint8_t>(button));
}

void Robot::Release(int button) {
    fButtons.erase(static_cast<uint8_t>(button));
    Send(XCB_BUTTON_RELEASE, static_cast<uint8_t>(button));
}

void Robot::Click(int x, int y, int button) {
    MoveTo(x, y);
    Press(button);
    Release(button);
}

void Robot::DoubleClick(int x, int y, int button) {
    Click(x, y, button);
    PressAgain(button);
    Release(button);
}

void Robot::PressAgain(int button) {
    std::this_thread::sleep_for(kPauseOfHand);
    Press(button);
}

void Robot::Drag(int fromX, int fromY, int toX, int toY, int button, int steps) {
    MoveTo(fromX, fromY);
    Press(button);
    for (int i = 1; i <= steps; ++i)
        MoveTo(fromX + (toX - fromX) * i / steps, fromY + (toY - fromY) * i / steps);
    Release(button);
}

void Robot::KeyDown(uint32_t keysym) {
    const uint8_t code = Find(keysym).code;
    fKeys.insert(code);
    Send(XCB_KEY_PRESS, code);
}

void Robot::KeyUp(uint32_t keysym) {
    const uint8_t code = Find(keysym).code;
    fKeys.erase(code);
    Send(XCB_KEY_RELEASE, code);
}

void Robot::Key(uint32_t keysym) {
    KeyDown(keysym);
    KeyUp(keysym);
}

void Robot::Type(const std::string& text) {
    for (const unsigned char character : text) {
        const bool shifted = Find(character).level == 1;
        if (shifted)
            KeyDown(XK_Shift_L);
        Key(character);
        if (shifted)
            KeyUp(XK_Shift_L);
    }
}

Robot::KeyPlace Robot::Find(uint32_t keysym) const {
    xcb_connection_t* connection = fDesktop.Connection();
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto cookie =
        xcb_get_keyboard_mapping(connection, setup->min_keycode, static_cast<uint8_t>(count));
    auto* reply = xcb_get_keyboard_mapping_reply(connection, cookie, nullptr);
    if (reply == nullptr)
        throw std::runtime_error("the keyboard's map cannot be read");
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply);
    const int perKey = reply->keysyms_per_keycode;
    KeyPlace place;
    for (int i = 0; i < count * perKey && place.code == 0; ++i)
        if (symbols[i] == keysym)
            place = {static_cast<uint8_t>(setup->min_keycode + i / perKey), i % perKey};
    free(reply);
    if (place.code == 0)
        throw std::runtime_error("no key carries that symbol");
    return place;
}

void Robot::Send(uint8_t type, uint8_t detail, int x, int y) {
    xcb_test_fake_input(fDesktop.Connection(), type, detail, XCB_CURRENT_TIME, fDesktop.Root(),
                        static_cast<int16_t>(x), static_cast<int16_t>(y), 0);
    fDesktop.Sync();
}

} // namespace test

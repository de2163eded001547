// The desk's pointer and keyboard.

#include <X11/keysym.h>
#include <stdexcept>
#include <thread>
#include <utility>
#include <xcb/xtest.h>

#include "tests/support/Peer.h"

namespace test {

namespace {

constexpr std::chrono::milliseconds kPauseOfHand(40);

struct KeyPlace {
    uint8_t code = 0;
    int level = 0;
};

KeyPlace Find(xcb_connection_t* connection, uint32_t keysym) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto map = Ask<xcb_get_keyboard_mapping, xcb_get_keyboard_mapping_reply>(
        connection, setup->min_keycode, static_cast<uint8_t>(count));
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
    const int perKey = map->keysyms_per_keycode;
    for (int i = 0; i < count * perKey; ++i)
        if (symbols[i] == keysym)
            return {static_cast<uint8_t>(setup->min_keycode + i / perKey), i % perKey};
    throw std::runtime_error("no key carries that symbol");
}

} // namespace

void Desk::MoveTo(int x, int y) {
    Fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void Desk::Press(int button) {
    fButtons.insert(static_cast<uint8_t>(button));
    Fake(XCB_BUTTON_PRESS, static_cast<uint8_t>(button));
}

void Desk::Release(int button) {
    fButtons.erase(static_cast<uint8_t>(button));
    Fake(XCB_BUTTON_RELEASE, static_cast<uint8_t>(button));
}

void Desk::Click(int x, int y, int button) {
    MoveTo(x, y);
    Press(button);
    Release(button);
}

void Desk::DoubleClick(int x, int y) {
    Click(x, y);
    PressAgain();
    Release();
}

void Desk::PressAgain() {
    std::this_thread::sleep_for(kPauseOfHand);
    Press();
}

void Desk::Drag(int fromX, int fromY, int toX, int toY) {
    constexpr int kSteps = 8;
    MoveTo(fromX, fromY);
    Press();
    for (int i = 1; i <= kSteps; ++i)
        MoveTo(fromX + (toX - fromX) * i / kSteps, fromY + (toY - fromY) * i / kSteps);
    Release();
}

void Desk::KeyDown(uint32_t keysym) {
    const uint8_t code = Find(fConnection, keysym).code;
    fKeys.insert(code);
    Fake(XCB_KEY_PRESS, code);
}

void Desk::KeyUp(uint32_t keysym) {
    const uint8_t code = Find(fConnection, keysym).code;
    fKeys.erase(code);
    Fake(XCB_KEY_RELEASE, code);
}

void Desk::Key(uint32_t keysym) {
    KeyDown(keysym);
    KeyUp(keysym);
}

void Desk::KeyWith(uint32_t modifier, uint32_t keysym) {
    KeyDown(modifier);
    Key(keysym);
    KeyUp(modifier);
}

void Desk::Type(const std::string& text) {
    for (const unsigned char character : text) {
        if (Find(fConnection, character).level == 1)
            KeyWith(XK_Shift_L, character);
        else
            Key(character);
    }
}

void Desk::LetGo() {
    for (const uint8_t key : std::exchange(fKeys, {}))
        Fake(XCB_KEY_RELEASE, key);
    for (const uint8_t button : std::exchange(fButtons, {}))
        Fake(XCB_BUTTON_RELEASE, button);
}

void Desk::Fake(uint8_t type, uint8_t detail, int x, int y) {
    xcb_test_fake_input(fConnection, type, detail, XCB_CURRENT_TIME, Root(),
                        static_cast<int16_t>(x), static_cast<int16_t>(y), 0);
    Sync();
}

// At so early a time nothing can be grabbed, but the server looks first whether it is.
bool Desk::IsKeyboardGrabbed() const {
    constexpr xcb_timestamp_t kTooEarly = 1;
    const auto reply = Ask<xcb_grab_keyboard, xcb_grab_keyboard_reply>(
        fConnection, uint8_t{0}, Root(), kTooEarly, uint8_t{XCB_GRAB_MODE_ASYNC},
        uint8_t{XCB_GRAB_MODE_ASYNC});
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

bool Desk::IsInputFree() {
    Peer other(*this);
    return WaitUntil([&] {
        const bool isFree = other.GrabPointer() && other.GrabKeyboard();
        other.Ungrab();
        return isFree;
    });
}

} // namespace test

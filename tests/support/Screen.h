#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/support/Picture.h"
#include "tests/support/PrivateDesktop.h"

namespace test {

// What the server knows about one top-level window of a program.
struct WindowInfo {
    xcb_window_t id = XCB_NONE;
    Box frame; // of its inside, without border or decoration, on the screen
    int border = 0;
    bool viewable = false;
    bool overrideRedirect = false;
    pid_t pid = 0; // _NET_WM_PID, 0 without it
    std::string title;
    std::string instance, className; // WM_CLASS
    std::vector<std::string> types;  // _NET_WM_WINDOW_TYPE

    bool HasType(const std::string& name) const;
};

// Looks at a desktop: pixels, windows, properties.
class Screen {
public:
    explicit Screen(PrivateDesktop& desktop)
        : fDesktop(desktop) {}

    uint32_t Pixel(int x, int y) const; // 0xRRGGBB
    Picture Grab(const Box& part) const;

    // Top-level windows of programs, managed ones and override-redirect ones, also those not shown.
    std::vector<WindowInfo> Windows() const;
    std::vector<WindowInfo> Windows(const std::function<bool(const WindowInfo&)>& filter) const;
    // Those that can be seen, of a type without its beginning ("DIALOG").
    std::vector<WindowInfo> Shown(const std::string& type) const;
    WindowInfo Describe(xcb_window_t window) const;
    bool IsViewable(xcb_window_t window) const;

    // Properties; empty when the window lacks them.
    std::string Text(xcb_window_t window, const std::string& property) const;
    std::vector<uint32_t> Cardinals(xcb_window_t window, const std::string& property) const;
    std::vector<std::string> Atoms(xcb_window_t window, const std::string& property) const;

    bool HasState(xcb_window_t window, const std::string& state) const; // _NET_WM_STATE
    bool IsMinimized(xcb_window_t window) const;                        // WM_STATE
    xcb_window_t ActiveWindow() const;                                  // as the manager says
    xcb_window_t FocusedWindow() const;                                 // as the server says
    xcb_window_t SelectionOwner(const std::string& selection) const;
    std::vector<xcb_window_t> Stacking() const; // managed windows, the lowest first

    // As a task bar would.
    void Activate(xcb_window_t window) const;
    void Close(xcb_window_t window) const;

private:
    void Collect(xcb_window_t parent, int depth, std::vector<WindowInfo>& found) const;
    std::vector<uint8_t> Property(xcb_window_t window, const std::string& name) const;
    void SendToRoot(xcb_window_t window, const std::string& type, uint32_t first) const;

    PrivateDesktop& fDesktop;
};

} // namespace test

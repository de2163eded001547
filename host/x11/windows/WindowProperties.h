#pragma once

#include "host/x11/Display.h"
#include "host/x11/server/Connection.h"

namespace host {

// The properties that all windows of the program share.
struct ProgramIdentity {
    std::string instanceName;
    std::string className;
    xcb_window_t leader = XCB_WINDOW_NONE; // the group's window, never shown
};

// In _NET_WM_DESKTOP.
inline constexpr uint32 kAllDesktops = 0xffffffff;

inline bool IsManaged(WindowKind kind) {
    return kind != WindowKind::Menu && kind != WindowKind::Bubble;
}

// The properties that a window has from its creation to its end, but for the frame and the state.
void SetFixedProperties(const Connection& connection, xcb_window_t window, const WindowSpec& spec,
                        const ProgramIdentity& identity);

// `outer` is the window with its border.
void SetFrameHints(const Connection& connection, xcb_window_t window, const PixelRect& outer,
                   bool resizable);

// The window manager reads it when the window is mapped.
struct InitialState {
    bool minimized = false;
    bool floating = false;
    bool allDesktops = false;
    bool takesFocus = true;                     // the manager may give it the focus
    xcb_window_t alertParent = XCB_WINDOW_NONE; // above which an alert stays
};
// WM_HINTS alone, which it reads whenever they change.
void SetManagerHints(const Connection& connection, xcb_window_t window, const InitialState& state,
                     const ProgramIdentity& identity);
void SetInitialState(const Connection& connection, xcb_window_t window, WindowKind kind,
                     const InitialState& state, const ProgramIdentity& identity);

void SetIconProperty(const Connection& connection, xcb_window_t window,
                     const std::vector<std::vector<uint32>>& icons);

// The words of an icon in the property: width, height, then the rows.
std::vector<uint32> IconWords(const Image& icon);

} // namespace host

#include "host/x11/windows/WindowProperties.h"

#include <algorithm>

#include <unistd.h>

namespace host {

namespace {

constexpr std::size_t kMaxTitleBytes = 1024;
constexpr int kMaxIconSide = 256;

// _MOTIF_WM_HINTS
constexpr uint32 kHasFunctions = 1;
constexpr uint32 kHasDecorations = 2;
constexpr uint32 kResizeFunction = 2;
constexpr uint32 kMoveFunction = 4;
constexpr uint32 kMinimizeFunction = 8;
constexpr uint32 kMaximizeFunction = 16;
constexpr uint32 kCloseFunction = 32;
constexpr uint32 kBorderDecoration = 2;
constexpr uint32 kHandleDecoration = 4;
constexpr uint32 kTitleDecoration = 8;
constexpr uint32 kMenuDecoration = 16;
constexpr uint32 kMinimizeDecoration = 32;
constexpr uint32 kMaximizeDecoration = 64;

// WM_NORMAL_HINTS
constexpr uint32 kUserPosition = 1;
constexpr uint32 kUserSize = 2;
constexpr uint32 kMinSize = 16;
constexpr uint32 kMaxSize = 32;
constexpr uint32 kGravity = 512;

// WM_HINTS
constexpr uint32 kHasInput = 1;
constexpr uint32 kHasState = 2;
constexpr uint32 kHasGroup = 64;
constexpr uint32 kNormalState = 1;
constexpr uint32 kIconicState = 3;

AtomIndex TypeOf(WindowKind kind) {
    switch (kind) {
    case WindowKind::Alert:
        return kNetWmWindowTypeDialog;
    case WindowKind::Menu:
        return kNetWmWindowTypePopupMenu;
    case WindowKind::Bubble:
        return kNetWmWindowTypeTooltip;
    case WindowKind::Bar: // of a utility's window many managers keep the task bar's button away
    case WindowKind::Normal:
        break;
    }
    return kNetWmWindowTypeNormal;
}

// Some window managers show a button for what a window cannot do, unless the hints exclude it.
uint32 DecorationsOf(const WindowSpec& spec) {
    if (spec.kind == WindowKind::Bar)
        return 0;
    uint32 decorations = kBorderDecoration | kTitleDecoration | kMenuDecoration;
    if (spec.resizable)
        decorations |= kHandleDecoration | kMaximizeDecoration;
    if (spec.minimizable)
        decorations |= kMinimizeDecoration;
    return decorations;
}

void SetMotifHints(const Connection& connection, xcb_window_t window, const WindowSpec& spec) {
    uint32 functions = kMoveFunction;
    if (spec.resizable)
        functions |= kResizeFunction | kMaximizeFunction;
    if (spec.minimizable)
        functions |= kMinimizeFunction;
    if (spec.closable)
        functions |= kCloseFunction;
    connection.SetValues(window, connection[kMotifWmHints], connection[kMotifWmHints],
                         {kHasFunctions | kHasDecorations, functions, DecorationsOf(spec), 0, 0});
}

void SetManagedProperties(const Connection& connection, xcb_window_t window, const WindowSpec& spec,
                          const ProgramIdentity& identity) {
    SetMotifHints(connection, window, spec);
    connection.SetValues(window, connection[kWmProtocols], XCB_ATOM_ATOM,
                         {connection[kWmDeleteWindow], connection[kNetWmPing]});
    connection.SetValues(window, connection[kWmClientLeader], XCB_ATOM_WINDOW, {identity.leader});
    connection.SetValues(window, connection[kXdndAware], XCB_ATOM_ATOM, {kXdndVersion});
    if (spec.kind == WindowKind::Bar) {
        // Takes no focus when it is mapped.
        connection.SetValues(window, connection[kNetWmUserTime], XCB_ATOM_CARDINAL, {0});
    }
}

} // namespace

void SetFixedProperties(const Connection& connection, xcb_window_t window, const WindowSpec& spec,
                        const ProgramIdentity& identity) {
    std::string names = identity.instanceName + '\0' + identity.className + '\0';
    connection.SetText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, names);
    connection.SetText(window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, HostName());
    connection.SetValues(window, connection[kNetWmPid], XCB_ATOM_CARDINAL,
                         {static_cast<uint32>(getpid())});
    connection.SetValues(window, connection[kNetWmWindowType], XCB_ATOM_ATOM,
                         {connection[TypeOf(spec.kind)]});
    const std::string_view title = std::string_view(spec.title).substr(0, kMaxTitleBytes);
    for (xcb_atom_t name : {connection[kNetWmName], xcb_atom_t{XCB_ATOM_WM_NAME}})
        connection.SetText(window, name, connection[kUtf8String], title);
    if (IsManaged(spec.kind))
        SetManagedProperties(connection, window, spec, identity);
}

void SetFrameHints(const Connection& connection, xcb_window_t window, const PixelRect& outer,
                   bool resizable) {
    std::vector<uint32> hints(18);
    hints[0] = kUserPosition | kUserSize | kGravity;
    hints[1] = outer.left;
    hints[2] = outer.top;
    hints[3] = outer.Width();
    hints[4] = outer.Height();
    if (!resizable) {
        hints[0] |= kMinSize | kMaxSize;
        hints[5] = hints[7] = outer.Width();
        hints[6] = hints[8] = outer.Height();
    }
    // A place is the window's own, without the window manager's frame around it.
    hints[17] = XCB_GRAVITY_STATIC;
    connection.SetValues(window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints);
}

void SetManagerHints(const Connection& connection, xcb_window_t window, const InitialState& state,
                     const ProgramIdentity& identity) {
    connection.SetValues(window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS,
                         {kHasInput | kHasState | kHasGroup, state.takesFocus,
                          state.minimized ? kIconicState : kNormalState, 0, 0, 0, 0, 0,
                          identity.leader});
}

void SetInitialState(const Connection& connection, xcb_window_t window, WindowKind kind,
                     const InitialState& state, const ProgramIdentity& identity) {
    SetManagerHints(connection, window, state, identity);
    std::vector<uint32> states;
    if (state.floating || kind == WindowKind::Alert)
        states.push_back(connection[kNetWmStateAbove]);
    if (kind == WindowKind::Alert)
        states.push_back(connection[kNetWmStateModal]);
    // Some managers take the desktop's number below for that of one desktop.
    if (state.allDesktops)
        states.push_back(connection[kNetWmStateSticky]);
    connection.SetValues(window, connection[kNetWmState], XCB_ATOM_ATOM, states);
    if (kind == WindowKind::Alert) {
        // The root stands for all windows of the group.
        xcb_window_t parent = state.alertParent ? state.alertParent : connection.Root();
        connection.SetValues(window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, {parent});
    }
    if (state.allDesktops) {
        connection.SetValues(window, connection[kNetWmDesktop], XCB_ATOM_CARDINAL, {kAllDesktops});
    } else {
        xcb_delete_property(connection, window, connection[kNetWmDesktop]);
    }
}

void SetIconProperty(const Connection& connection, xcb_window_t window,
                     const std::vector<std::vector<uint32>>& icons) {
    xcb_atom_t property = connection[kNetWmIcon];
    for (const auto& icon : icons) {
        xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, property, XCB_ATOM_CARDINAL,
                            32, icon.size(), icon.data());
    }
}

std::vector<uint32> IconWords(const Image& icon) {
    if (!icon.pixels || icon.width < 1 || icon.height < 1 || icon.width > kMaxIconSide ||
        icon.height > kMaxIconSide)
        return {};
    std::vector<uint32> words{static_cast<uint32>(icon.width), static_cast<uint32>(icon.height)};
    for (int y = 0; y < icon.height; y++) {
        for (int x = 0; x < icon.width; x++)
            words.push_back(icon.At(x, y));
    }
    return words;
}

} // namespace host

#pragma once

#include <array>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <xcb/xcb.h>

#include "base/Types.h"

// Every atom that the program names, in one table: they are interned in one round trip.
#define X11_ATOMS(ATOM)                                                                            \
    ATOM(kApplicationColor, "application/x-color")                                                 \
    ATOM(kAtomPair, "ATOM_PAIR")                                                                   \
    ATOM(kClipboard, "CLIPBOARD")                                                                  \
    ATOM(kClipboardManager, "CLIPBOARD_MANAGER")                                                   \
    ATOM(kCompositor, "_NET_WM_CM_S0")                                                             \
    ATOM(kIncr, "INCR")                                                                            \
    ATOM(kManager, "MANAGER")                                                                      \
    ATOM(kMotifWmHints, "_MOTIF_WM_HINTS")                                                         \
    ATOM(kMultiple, "MULTIPLE")                                                                    \
    ATOM(kNetActiveWindow, "_NET_ACTIVE_WINDOW")                                                   \
    ATOM(kNetCurrentDesktop, "_NET_CURRENT_DESKTOP")                                               \
    ATOM(kNetStartupInfo, "_NET_STARTUP_INFO")                                                     \
    ATOM(kNetStartupInfoBegin, "_NET_STARTUP_INFO_BEGIN")                                          \
    ATOM(kNetSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK")                                        \
    ATOM(kNetSupported, "_NET_SUPPORTED")                                                          \
    ATOM(kNetWmActionMinimize, "_NET_WM_ACTION_MINIMIZE")                                          \
    ATOM(kNetWmAllowedActions, "_NET_WM_ALLOWED_ACTIONS")                                          \
    ATOM(kNetWmDesktop, "_NET_WM_DESKTOP")                                                         \
    ATOM(kNetWmIcon, "_NET_WM_ICON")                                                               \
    ATOM(kNetWmName, "_NET_WM_NAME")                                                               \
    ATOM(kNetWmPid, "_NET_WM_PID")                                                                 \
    ATOM(kNetWmPing, "_NET_WM_PING")                                                               \
    ATOM(kNetWmState, "_NET_WM_STATE")                                                             \
    ATOM(kNetWmStateAbove, "_NET_WM_STATE_ABOVE")                                                  \
    ATOM(kNetWmStateHidden, "_NET_WM_STATE_HIDDEN")                                                \
    ATOM(kNetWmStateModal, "_NET_WM_STATE_MODAL")                                                  \
    ATOM(kNetWmStateSticky, "_NET_WM_STATE_STICKY")                                                \
    ATOM(kNetWmUserTime, "_NET_WM_USER_TIME")                                                      \
    ATOM(kNetWmWindowType, "_NET_WM_WINDOW_TYPE")                                                  \
    ATOM(kNetWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG")                                     \
    ATOM(kNetWmWindowTypeDnd, "_NET_WM_WINDOW_TYPE_DND")                                           \
    ATOM(kNetWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL")                                     \
    ATOM(kNetWmWindowTypePopupMenu, "_NET_WM_WINDOW_TYPE_POPUP_MENU")                              \
    ATOM(kNetWmWindowTypeTooltip, "_NET_WM_WINDOW_TYPE_TOOLTIP")                                   \
    ATOM(kSaveTargets, "SAVE_TARGETS")                                                             \
    ATOM(kSelectionData, "SELECTION_DATA")                                                         \
    ATOM(kTargets, "TARGETS")                                                                      \
    ATOM(kText, "TEXT")                                                                            \
    ATOM(kTextHtml, "text/html")                                                                   \
    ATOM(kTextMozUrl, "text/x-moz-url")                                                            \
    ATOM(kTextPlain, "text/plain")                                                                 \
    ATOM(kTextPlainUtf8, "text/plain;charset=utf-8")                                               \
    ATOM(kTextUriList, "text/uri-list")                                                            \
    ATOM(kTimestamp, "TIMESTAMP")                                                                  \
    ATOM(kUtf8String, "UTF8_STRING")                                                               \
    ATOM(kWmChangeState, "WM_CHANGE_STATE")                                                        \
    ATOM(kWmClientLeader, "WM_CLIENT_LEADER")                                                      \
    ATOM(kWmDeleteWindow, "WM_DELETE_WINDOW")                                                      \
    ATOM(kWmProtocols, "WM_PROTOCOLS")                                                             \
    ATOM(kWmState, "WM_STATE")                                                                     \
    ATOM(kXdndActionCopy, "XdndActionCopy")                                                        \
    ATOM(kXdndActionLink, "XdndActionLink")                                                        \
    ATOM(kXdndAware, "XdndAware")                                                                  \
    ATOM(kXdndDirectSave, "XdndDirectSave0")                                                       \
    ATOM(kXdndDrop, "XdndDrop")                                                                    \
    ATOM(kXdndEnter, "XdndEnter")                                                                  \
    ATOM(kXdndFinished, "XdndFinished")                                                            \
    ATOM(kXdndLeave, "XdndLeave")                                                                  \
    ATOM(kXdndPosition, "XdndPosition")                                                            \
    ATOM(kXdndProxy, "XdndProxy")                                                                  \
    ATOM(kXdndSelection, "XdndSelection")                                                          \
    ATOM(kXdndStatus, "XdndStatus")                                                                \
    ATOM(kXdndTypeList, "XdndTypeList")                                                            \
    ATOM(kXimServers, "XIM_SERVERS")                                                               \
    ATOM(kXSettingsOwner, "_XSETTINGS_S0")                                                         \
    ATOM(kXSettingsSettings, "_XSETTINGS_SETTINGS")

namespace host {

enum AtomIndex : std::size_t {
#define ATOM(index, name) index,
    X11_ATOMS(ATOM)
#undef ATOM
        kAtomCount
};

// The drag protocol's version that windows announce, and the lowest that another program may speak.
inline constexpr uint32 kXdndVersion = 5;
inline constexpr uint32 kLowestXdndVersion = 3;
// In the second word of XdndEnter, and of XdndStatus and XdndFinished.
inline constexpr uint32 kHasTypeList = 1;
inline constexpr uint32 kAccepted = 1;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

// Owns a reply, an event or an error of xcb's. Null when the request failed or the connection is
// lost.
template <typename T>
using Reply = std::unique_ptr<T, FreeMemory>;

// The clock of the events' `when`.
bigtime_t Now();

// When a server's event happened, at the earliest: its milliseconds are of the same clock where the
// server runs on this machine. Where it does not, now.
bigtime_t TimeOf(uint32 serverTime);

// The name of this machine.
std::string HostName();

// The bytes of a property; nothing if there is none of that format. Valid as long as the reply.
std::string_view BytesOf(const Reply<xcb_get_property_reply_t>& reply);

// The visual of that depth, and with that `id` unless it is None, whose pixels are 0xRRGGBB words;
// None if the screen has none.
xcb_visualid_t FindVisual(const xcb_screen_t& screen, uint8 depth, xcb_visualid_t id = XCB_NONE);

// The connection to the X server and what stays the same as long as it lasts. Any thread.
class Connection {
public:
    // Null, with the reason in `problem`, if there is no server or its screen does not take
    // pictures of 0xRRGGBB words as they are. `name` null means the environment's display.
    static std::unique_ptr<Connection> Open(const char* name, std::string& problem);
    ~Connection();
    Connection(const Connection&) = delete;

    operator xcb_connection_t*() const { return fConnection; }
    const xcb_screen_t& Screen() const { return *fScreen; }
    xcb_window_t Root() const { return fScreen->root; }
    // None for an atom that could not be interned.
    xcb_atom_t operator[](AtomIndex index) const { return fAtoms[index]; }
    bool IsLost() const { return xcb_connection_has_error(fConnection) != 0; }
    void Flush() const { xcb_flush(fConnection); }

    // Sends a request and waits for its reply: Ask<xcb_query_pointer,
    // xcb_query_pointer_reply>(window).
    template <auto Request, auto Take, typename... Arguments>
    auto Ask(Arguments... arguments) const {
        const auto cookie = Request(fConnection, arguments...);
        using T = std::remove_pointer_t<decltype(Take(fConnection, cookie, nullptr))>;
        return Reply<T>(Take(fConnection, cookie, nullptr));
    }
    // None if it cannot be interned.
    xcb_atom_t Intern(std::string_view name) const;
    // None if nobody owns it.
    xcb_window_t OwnerOf(xcb_atom_t selection) const;

    // The most bytes that a request may have without an extension.
    std::size_t MaxRequestBytes() const;

    // The first 32-bit values of a property; empty if there is none of that type and format.
    xcb_get_property_cookie_t AskForValues(xcb_window_t window, xcb_atom_t property,
                                           xcb_atom_t type) const;
    std::vector<uint32> ReadValues(xcb_get_property_cookie_t cookie) const;

    void SetValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                   const std::vector<uint32>& values) const;
    void SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                 std::string_view text) const;

    // Asks the window manager for something about `window`.
    void SendToRoot(xcb_window_t window, xcb_atom_t type, const std::vector<uint32>& data) const;

    // A client message about `window` to another program's window. Either may be gone.
    void SendMessage(xcb_window_t receiver, xcb_window_t window, AtomIndex type,
                     const std::vector<uint32>& data) const;

    // An empty message to a window of the program: it wakes the display thread.
    void SendMessageTo(xcb_window_t window) const;

    // Whether the server is the client of a Wayland compositor. Waits for it the first time.
    bool IsXWayland() const;

    // Whether windows can have other shapes than rectangles.
    bool HasShapes() const;
    // Has the pointer and its buttons go through the window, if that can be.
    void LetInputThrough(xcb_window_t window) const;

    // Asks the server: a window manager may come and go.
    bool HasWindowManager() const;
    // Whether it says that it knows a hint (_NET_SUPPORTED); asks the server.
    bool IsSupportedByManager(AtomIndex hint) const;

private:
    Connection() = default;
    std::string CheckScreen() const;
    void ReadAtoms();
    bool HasDeviceNamed(std::string_view start) const;
    void Send(xcb_window_t receiver, xcb_window_t window, xcb_atom_t type,
              const std::vector<uint32>& data, uint32 mask) const;

    xcb_connection_t* fConnection = nullptr;
    xcb_screen_t* fScreen = nullptr;
    std::array<xcb_atom_t, kAtomCount> fAtoms{};
    mutable std::once_flag fDevicesRead;
    mutable bool fIsXWayland = false; // once they are
};

} // namespace host

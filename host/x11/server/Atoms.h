#pragma once

#include <array>
#include <cstddef>

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
    ATOM(kMotifWmHints, "_MOTIF_WM_HINTS")                                                         \
    ATOM(kMultiple, "MULTIPLE")                                                                    \
    ATOM(kNetActiveWindow, "_NET_ACTIVE_WINDOW")                                                   \
    ATOM(kNetCurrentDesktop, "_NET_CURRENT_DESKTOP")                                               \
    ATOM(kNetSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK")                                        \
    ATOM(kNetWmDesktop, "_NET_WM_DESKTOP")                                                         \
    ATOM(kNetWmIcon, "_NET_WM_ICON")                                                               \
    ATOM(kNetWmName, "_NET_WM_NAME")                                                               \
    ATOM(kNetWmPid, "_NET_WM_PID")                                                                 \
    ATOM(kNetWmPing, "_NET_WM_PING")                                                               \
    ATOM(kNetWmState, "_NET_WM_STATE")                                                             \
    ATOM(kNetWmStateAbove, "_NET_WM_STATE_ABOVE")                                                  \
    ATOM(kNetWmStateHidden, "_NET_WM_STATE_HIDDEN")                                                \
    ATOM(kNetWmStateModal, "_NET_WM_STATE_MODAL")                                                  \
    ATOM(kNetWmUserTime, "_NET_WM_USER_TIME")                                                      \
    ATOM(kNetWmWindowType, "_NET_WM_WINDOW_TYPE")                                                  \
    ATOM(kNetWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG")                                     \
    ATOM(kNetWmWindowTypeDnd, "_NET_WM_WINDOW_TYPE_DND")                                           \
    ATOM(kNetWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL")                                     \
    ATOM(kNetWmWindowTypePopupMenu, "_NET_WM_WINDOW_TYPE_POPUP_MENU")                              \
    ATOM(kNetWmWindowTypeTooltip, "_NET_WM_WINDOW_TYPE_TOOLTIP")                                   \
    ATOM(kNetWmWindowTypeUtility, "_NET_WM_WINDOW_TYPE_UTILITY")                                   \
    ATOM(kSaveTargets, "SAVE_TARGETS")                                                             \
    ATOM(kSelectionData, "SELECTION_DATA")                                                         \
    ATOM(kTargets, "TARGETS")                                                                      \
    ATOM(kText, "TEXT")                                                                            \
    ATOM(kTextPlain, "text/plain")                                                                 \
    ATOM(kTextPlainUtf8, "text/plain;charset=utf-8")                                               \
    ATOM(kTimestamp, "TIMESTAMP")                                                                  \
    ATOM(kUtf8String, "UTF8_STRING")                                                               \
    ATOM(kWmChangeState, "WM_CHANGE_STATE")                                                        \
    ATOM(kWmClientLeader, "WM_CLIENT_LEADER")                                                      \
    ATOM(kWmDeleteWindow, "WM_DELETE_WINDOW")                                                      \
    ATOM(kWmProtocols, "WM_PROTOCOLS")                                                             \
    ATOM(kWmState, "WM_STATE")                                                                     \
    ATOM(kXdndActionCopy, "XdndActionCopy")                                                        \
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

class Atoms {
public:
    // Sends the requests; Read takes the replies. An atom that could not be interned is None.
    void Request(xcb_connection_t* connection);
    void Read(xcb_connection_t* connection);

    xcb_atom_t operator[](AtomIndex index) const { return fAtoms[index]; }

private:
    std::array<xcb_intern_atom_cookie_t, kAtomCount> fCookies{};
    std::array<xcb_atom_t, kAtomCount> fAtoms{};
};

// The drag protocol's version that windows announce, and the lowest that another program may speak.
inline constexpr uint32 kXdndVersion = 5;
inline constexpr uint32 kLowestXdndVersion = 3;

} // namespace host

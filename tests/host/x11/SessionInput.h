#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/x11/server/Reply.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateDesktop.h"

namespace host {

// Input of the whole session, taken and given back by another program.
class ForeignGrab {
public:
    explicit ForeignGrab(test::PrivateDesktop& desktop)
        : fConnection(xcb_connect(desktop.Name().c_str(), nullptr)) {
        Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
            fConnection,
            xcb_grab_keyboard(fConnection, false, desktop.Root(), XCB_CURRENT_TIME,
                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr));
        fIsHeld = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    ~ForeignGrab() { xcb_disconnect(fConnection); }

    bool IsHeld() const { return fIsHeld; }

private:
    xcb_connection_t* fConnection;
    bool fIsHeld;
};

// The layout, as setxkbmap's -layout has it, and more arguments of that program.
inline void SetLayout(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"setxkbmap", "-option", "", "-layout"});
    test::ChildProcess::Options options;
    options.arguments = std::move(arguments);
    EXPECT_EQ(test::ChildProcess(options).Wait(), 0);
}

} // namespace host

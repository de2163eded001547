#pragma once

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <sys/types.h>
#include <type_traits>
#include <vector>
#include <xcb/xcb.h>

#include "tests/support/Wait.h"

namespace test {

class ChildProcess;

// Place and size on the screen, in pixels.
struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int CenterX() const { return x + width / 2; }
    int CenterY() const { return y + height / 2; }
    bool Contains(const Box& other) const {
        return other.x >= x && other.y >= y && other.x + other.width <= x + width &&
               other.y + other.height <= y + height;
    }
    bool operator==(const Box&) const = default;
};

// A copy of a part of the screen; pixels are 0xRRGGBB.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;

    uint32_t At(int x, int y) const { return pixels.at(static_cast<size_t>(y) * width + x); }
    size_t Count(uint32_t color) const;
    bool operator==(const Picture&) const = default;
};

// The server's view of one top-level window of a program.
struct WindowInfo {
    xcb_window_t id = XCB_NONE;
    Box frame; // of its inside, without border or decoration, on the screen
    bool viewable = false;
    pid_t pid = 0;                  // _NET_WM_PID, 0 without it
    std::string title;              // _NET_WM_NAME
    std::vector<std::string> types; // _NET_WM_WINDOW_TYPE

    bool HasType(const std::string& name) const;
};

// A reply or an event of xcb, which malloc() made.
struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using XReply = std::unique_ptr<T, FreeReply>;

// Sends a request and gives the function that waits for the reply, which is null after an error:
// Send<xcb_get_geometry, xcb_get_geometry_reply>(connection, window)().
template <auto Request, auto Answer, typename... Arguments>
auto Send(xcb_connection_t* connection, Arguments... arguments) {
    return [connection, cookie = Request(connection, arguments...)] {
        using T = std::remove_pointer_t<decltype(Answer(connection, cookie, nullptr))>;
        return XReply<T>(Answer(connection, cookie, nullptr));
    };
}
template <auto Request, auto Answer, typename... Arguments>
auto Ask(xcb_connection_t* connection, Arguments... arguments) {
    return Send<Request, Answer>(connection, arguments...)();
}

// An X server of the test's own (Xvfb) with openbox as its window manager (openbox.xml: click to
// focus, no key bindings, two desktops, windows stay where they ask to be), and the person before
// it: a pointer, a keyboard, a pair of eyes. While it exists DISPLAY of this process names it. Its
// processes end with the object, or with the thread that made it.
class Desk {
public:
    struct Options {
        int width = 1280;
        int height = 900;
        int depth = 24;
        bool windowManager = true;
        std::vector<Box> monitors = {}; // empty: one that is the whole screen
        int dpi = 0;                    // Xft.dpi in the resource database; 0 sets none
    };

    // One desk with the default options for the whole test process, started at the first call.
    // Between two tests all keys and buttons are released.
    static Desk& Shared();

    explicit Desk(const Options& options);
    ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    // The server.
    const std::string& Name() const { return fName; } // as for DISPLAY
    xcb_connection_t* Connection() const { return fConnection; }
    xcb_window_t Root() const { return fScreen->root; }
    Box Frame() const { return {0, 0, fScreen->width_in_pixels, fScreen->height_in_pixels}; }
    xcb_atom_t Atom(const std::string& name) const;
    std::vector<std::string> AtomNames(const std::vector<uint32_t>& atoms) const;
    // For xcb_send_event.
    xcb_client_message_event_t Message(xcb_window_t about, const std::string& type,
                                       const std::vector<uint32_t>& data) const;
    // Returns when the server has carried out the requests of this process.
    void Sync() const;
    void SetDpi(int dpi);
    double Scale() const { return fScale; } // of that resolution
    // Replaces the monitors (virtual ones of the RandR extension).
    void SetMonitors(const std::vector<Box>& monitors);
    // Ends the server under its clients. Only the destructor may follow.
    void KillServer();

    // Pointer and keys, through the XTEST extension: when a function returns, the server has sent
    // the events. Keys are named by keysym (XK_… of X11/keysym.h): the key that carries it on any
    // of its levels is pressed, so XK_KP_3 is the keypad's 3 whatever Num Lock says.
    void MoveTo(int x, int y);
    void Press(int button = 1);
    void Release(int button = 1);
    void Click(int x, int y, int button = 1);
    // With the pause of a quick hand: of two clicks in no time the window manager, which holds
    // each press back for a moment, swallows the second now and then.
    void DoubleClick(int x, int y);
    // Once more where the pointer is, after the same pause.
    void PressAgain();
    // Presses at the first point, moves in some steps to the second, releases.
    void Drag(int fromX, int fromY, int toX, int toY);
    void KeyDown(uint32_t keysym);
    void KeyUp(uint32_t keysym);
    void Key(uint32_t keysym);
    void KeyWith(uint32_t modifier, uint32_t keysym);
    // Latin-1 text, with Shift where a character needs it.
    void Type(const std::string& text);
    // Releases the keys and buttons that are still down.
    void LetGo();
    // Whether a program could grab pointer and keyboard; waits for it.
    bool IsInputFree();
    // Whether a program has grabbed it; takes nothing from that program.
    bool IsKeyboardGrabbed() const;

    // Pixels.
    uint32_t Pixel(int x, int y) const; // 0xRRGGBB
    Picture Grab(const Box& part) const;
    // Waits until that part shows more than a plain ground and does not change, and gives it.
    Picture Settled(const Box& part) const;

    // Top-level windows of programs that pass the filter, managed ones and override-redirect ones,
    // also those not shown.
    using Filter = std::function<bool(const WindowInfo&)>;
    std::vector<WindowInfo> Windows(const Filter& filter) const;
    // Those that can be seen, of a type without its beginning ("DIALOG"), of a process if given.
    std::vector<WindowInfo> Shown(const std::string& type, pid_t pid = 0) const;
    WindowInfo Describe(xcb_window_t window) const;
    bool IsViewable(xcb_window_t window) const { return Describe(window).viewable; }

    // A property; empty when the window lacks it.
    std::vector<uint32_t> Cardinals(xcb_window_t window, const std::string& property) const;

    bool HasState(xcb_window_t window, const std::string& state) const; // _NET_WM_STATE
    xcb_window_t ActiveWindow() const;                                  // of the window manager
    // Active, and focused by the server: the window manager may still name a window of the same
    // number, of the program before.
    bool HasKeyboard(xcb_window_t window) const;
    std::vector<xcb_window_t> Stacking() const; // managed windows, the lowest first

    // As a task bar would.
    void Activate(xcb_window_t window) const;
    void Close(xcb_window_t window) const;
    // To the window manager.
    void SendToRoot(xcb_window_t window, const std::string& type,
                    const std::vector<uint32_t>& data) const;

private:
    void StartServer(const Options& options);
    void StartWindowManager();
    void Fake(uint8_t type, uint8_t detail, int x = 0, int y = 0);
    void Collect(xcb_window_t parent, int depth, std::vector<WindowInfo>& found) const;
    auto SendGetProperty(xcb_window_t window, const std::string& name) const;

    std::string fName;
    std::string fOldDisplay;
    double fScale = 1;
    std::unique_ptr<ChildProcess> fServer;
    std::unique_ptr<ChildProcess> fWindowManager;
    xcb_connection_t* fConnection = nullptr;
    xcb_screen_t* fScreen = nullptr;
    mutable std::mutex fLock;
    mutable std::map<std::string, xcb_atom_t> fAtoms; // guarded by fLock
    std::set<uint8_t> fKeys;
    std::set<uint8_t> fButtons;
};

// An ordinary window of another program: something to click on, to give the focus to, to drop on.
class PlainWindow {
public:
    PlainWindow(Desk& desk, const Box& frame);
    ~PlainWindow();
    PlainWindow(const PlainWindow&) = delete;
    PlainWindow& operator=(const PlainWindow&) = delete;

    xcb_window_t Id() const { return fWindow; }
    void Activate();

private:
    Desk& fDesk;
    xcb_window_t fWindow;
};

} // namespace test

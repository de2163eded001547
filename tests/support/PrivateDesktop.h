#pragma once

#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

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

// An X server of the test's own (Xvfb), with openbox as window manager: click to focus, no key
// bindings, two desktops, windows stay where they ask to be. While it exists DISPLAY of this
// process names it. Its processes end with the object, or with the thread that made it.
class PrivateDesktop {
public:
    struct Options {
        int width = 1280;
        int height = 900;
        int depth = 24;
        bool windowManager = true;
        std::vector<Box> monitors = {}; // empty: one that is the whole screen
        int dpi = 0;                    // Xft.dpi in the resource database; 0 sets none
    };

    // One desktop with the default options for the whole test process, started at the first call.
    static PrivateDesktop& Shared();

    explicit PrivateDesktop(const Options& options);
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;

    const std::string& Name() const { return fName; } // as for DISPLAY
    xcb_connection_t* Connection() const { return fConnection; }
    xcb_window_t Root() const { return fScreen->root; }
    Box Frame() const { return {0, 0, fScreen->width_in_pixels, fScreen->height_in_pixels}; }
    xcb_atom_t Atom(const std::string& name) const;
    // For xcb_send_event.
    xcb_client_message_event_t Message(xcb_window_t about, const std::string& type,
                                       const std::vector<uint32_t>& data) const;

    // Returns when the server has carried out what this process asked for.
    void Sync() const;

    // Replaces the monitors (virtual ones of the RandR extension).
    void SetMonitors(const std::vector<Box>& monitors);

    // Ends the server under its clients. Only the destructor may follow.
    void KillServer();

private:
    void StartServer(const Options& options);
    void SetResources(int dpi);
    void StartWindowManager();

    std::string fName;
    std::string fOldDisplay;
    std::string fFolder; // the window manager's configuration
    std::unique_ptr<ChildProcess> fServer;
    std::unique_ptr<ChildProcess> fWindowManager;
    xcb_connection_t* fConnection = nullptr;
    xcb_screen_t* fScreen = nullptr;
};

// An ordinary window of another program: something to click on, to give the focus to, to drop on.
class PlainWindow {
public:
    PlainWindow(PrivateDesktop& desktop, const Box& frame, const std::string& title = "Plain");
    ~PlainWindow();
    PlainWindow(const PlainWindow&) = delete;
    PlainWindow& operator=(const PlainWindow&) = delete;

    xcb_window_t Id() const { return fWindow; }
    void Activate();

private:
    PrivateDesktop& fDesktop;
    xcb_window_t fWindow;
};

} // namespace test

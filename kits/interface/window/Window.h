#pragma once

#include <memory>
#include <string>

#include "base/Point.h"
#include "base/Rect.h"
#include "kits/app/Looper.h"
#include "kits/interface/drawing/InterfaceDefs.h"

class BControl;
class BView;

enum window_look {
    B_BORDERED_WINDOW_LOOK = 20, // a black border of one logical pixel around the content
    B_TITLED_WINDOW_LOOK = 1,
    B_MODAL_WINDOW_LOOK = 3,
    kMenuWindowLook = 1000, // private to the kit: a menu, which the window manager leaves alone
};

enum window_feel {
    B_NORMAL_WINDOW_FEEL = 0,
    B_MODAL_APP_WINDOW_FEEL = 1,
    B_FLOATING_ALL_WINDOW_FEEL = 6,
    kMenuWindowFeel = 1000,
};

// Window flags.
enum : uint32 {
    B_NOT_MOVABLE = 0x00000001,
    B_NOT_RESIZABLE = 0x00000002,
    B_WILL_ACCEPT_FIRST_CLICK = 0x00000010,
    B_NOT_CLOSABLE = 0x00000020,
    B_NOT_ZOOMABLE = 0x00000040,
    B_AVOID_FRONT = 0x00000080,
    B_AVOID_FOCUS = 0x00002000, // never active
    B_NOT_MINIMIZABLE = 0x00004000,
    B_ASYNCHRONOUS_CONTROLS = 0x00080000,
};

inline constexpr uint32 B_CURRENT_WORKSPACE = 0;
inline constexpr uint32 B_ALL_WORKSPACES = 0xffffffff;

// Connects the program to the display and the application object to the windows (see
// SessionHooks.h). B_ERROR without a display; a line on standard error says why. Call it once, from
// main(), before the first window.
status_t connect_display();

// A window on the screen with a looper of its own. Built with new; deleted by Quit(). Without a
// display it can be built and quit, and an alert does not open.
//
// One with a border that floats above all, cannot be moved and avoids the focus is a help bubble:
// the window manager leaves it alone, and clicks go through to what is under it.
//
// Its frame is its content's, without the border, in logical pixels of the screen. Until it is
// shown for the first time its thread does not run and the thread that built it has it locked;
// after that every call but the ones marked "any thread" needs the lock.
class BWindow : public BLooper {
public:
    BWindow(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
            uint32 workspaces = B_CURRENT_WORKSPACE);
    ~BWindow() override;

    // Views belong to the window from now on, and are attached at once.
    void AddChild(BView* child, BView* before = nullptr);
    bool RemoveChild(BView* child);
    BView* ChildAt(int32 index) const; // null past the last
    // The deepest visible view there, in the window's coordinates; or null.
    BView* FindView(BPoint where) const;

    // Calls are counted: a window that was hidden twice needs two Show(). The first Show() draws
    // the window, puts it on the screen, in reach (see SetGrip), and starts its thread. Any thread.
    virtual void Show();
    virtual void Hide();
    bool IsHidden() const;

    // Starts the thread of a window that is to stay hidden for now.
    thread_id Run() override;

    // Any thread.
    virtual void Minimize(bool minimize);
    bool IsMinimized() const;
    // Asks for the keyboard focus and brings the window up; `active` false does nothing.
    void Activate(bool active = true);
    // Still false while the press that activates it is handled.
    bool IsActive() const;

    BRect Frame() const;
    BRect Bounds() const;
    // A place is rounded to the display's pixels, a size to whole logical pixels.
    void MoveTo(BPoint where) { MoveTo(where.x, where.y); }
    void MoveTo(float x, float y);
    void ResizeTo(float width, float height);

    // The part, in the window's coordinates, that a person moves the window by; the whole window
    // unless it is set. A window whose grip is out of reach when it is first shown, when a press
    // that moved it ends or when the monitors change is moved into the nearest monitor: half of the
    // grip, or 20 by 20 pixels of it, must be on one. An addition to the platform.
    void SetGrip(BRect grip);

    // From now on links can be dropped here. While one is dragged over the window, the view under
    // it gets MouseMoved() with B_MIME_DATA; a drop brings that view B_MIME_DATA with the strings
    // "be:url" and "be:clip_name", one line of title. The link in a .desktop or .url file is read
    // on the window's thread; without one there is no "be:url", and the name is the file's. An
    // addition to the platform.
    void AcceptLinks();

    BPoint ConvertToScreen(BPoint point) const;
    BPoint ConvertFromScreen(BPoint point) const;
    BRect ConvertToScreen(BRect rect) const;

    // Whether it floats above all windows. B_BAD_VALUE for a feel that a window can only be made
    // with.
    status_t SetFeel(window_feel feel);
    // On all desktops (B_ALL_WORKSPACES), or on the current one.
    void SetWorkspaces(uint32 workspaces);

    // The button that Enter presses, whichever view has the focus; or null.
    void SetDefaultButton(BControl* button);
    BControl* DefaultButton() const;

    // Draws what waits to be drawn, and shows it.
    void UpdateIfNeeded();
    // Shows what has been drawn; Sync() returns when the display server has it.
    void Flush() const;
    void Sync() const;

    // Hooks. They do nothing here but for QuitRequested().
    virtual void WindowActivated(bool /*active*/) {}
    virtual void WorkspacesChanged(uint32 /*oldWorkspaces*/, uint32 /*newWorkspaces*/) {}
    bool QuitRequested() override { return true; }

    void Quit() override;
    void DispatchMessage(BMessage* message, BHandler* handler) override;

protected:
    void MessageHandled() override { UpdateIfNeeded(); }

    // UpdateIfNeeded() also for a window that is hidden, which else draws when it is shown. Its
    // memory for drawing is freed: the display server has the picture.
    void UpdateHidden();
    // Drops what waits to be drawn: the window has the picture already.
    void Validate();

    // Directs all mouse and keyboard input of the session to this window, until ReleaseInput() or
    // its end: its messages have "screen_where", whichever window the pointer is over. Tries for
    // `timeout` microseconds; an error if another program holds the input for that long.
    status_t GrabInput(bigtime_t timeout);
    void ReleaseInput();

private:
    friend class BView;
    friend class BAlert;
    friend class WindowRoster;
    friend class TextField;
    struct State;

    std::unique_ptr<State> fState;
};

#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/Color.h"
#include "base/Errors.h"
#include "base/Types.h"
#include "base/links/Link.h"
#include "host/draw/Image.h"

// The floor's only header for what stands above it: windows and input in plain types. Everything is
// in device pixels; places on the screen are relative to the root window's left-top corner.
namespace host {

enum class WindowKind {
    Bar,    // managed, undecorated, utility, on all desktops, takes no focus when it is mapped
    Normal, // managed, with the window manager's title bar
    Alert,  // managed dialog, above the program's other windows
    Menu,   // not managed, pop-up menu
    Bubble, // not managed, tool tip: the pointer and its buttons go through to what is under it
};

struct WindowSpec {
    WindowKind kind = WindowKind::Normal;
    PixelRect frame{}; // of the content
    int border = 0;    // black pixels that the window shows around its content
    std::string title{};
    bool resizable = true;
    bool closable = true;
    bool minimizable = true;
    bool floating = false; // above all windows
    bool allDesktops = false;
};

enum class PointerShape {
    Arrow, // the desktop's own
    Text,
};

// A pointer of the program's own, black and white, 16 by 16 pixels. It is shown in the size of the
// desktop's pointers. Rows are from the top, a row's leftmost pixel is its highest bit.
struct PointerImage {
    std::array<uint16, 16> ink{};  // a set bit is black, else white
    std::array<uint16, 16> mask{}; // a set bit is seen, else transparent
    int hotX = 0;                  // the pixel that points
    int hotY = 0;

    bool operator==(const PointerImage&) const = default;
};

// Mouse buttons and modifiers have the platform's values.
enum : uint32 {
    kPrimaryButton = 1,
    kSecondaryButton = 2,
    kTertiaryButton = 4,
};
enum : uint32 {
    kShiftKey = 0x00000001,
    kCommandKey = 0x00000002, // Alt
    kControlKey = 0x00000004,
    kCapsLock = 0x00000008,
    kScrollLock = 0x00000010,
    kNumLock = 0x00000020,
    kOptionKey = 0x00000040, // the "Windows" key
    kMenuKey = 0x00000080,
};

// The keys that are held, one bit for each raw key code, the first in the highest bit of the first
// byte.
using KeyStates = std::array<uint8, 16>;

constexpr bool IsHeld(const KeyStates& states, uint32 key) {
    return key / 8 < states.size() && (states[key / 8] & 0x80 >> key % 8) != 0;
}

struct PointerMoved {
    int x, y; // in the window's content
    int screenX, screenY;
    uint32 buttons; // that are down
    uint32 modifiers;
};
struct PointerLeft {};
// Whether events of the pointer come to this window: not while another window, a menu of this
// program or another program has it, though the other events may hide that for a moment.
struct PointerOver {
    bool over;
};
struct ButtonPressed {
    PointerMoved at; // `buttons` includes the one that went down
    int32 clicks;    // 1, 2 … within the desktop's double-click time and distance
    bigtime_t when;  // on the clock of system_time()
};
struct ButtonReleased {
    PointerMoved at; // `buttons` without the one that went up
    bigtime_t when;
};
struct WheelTurned {
    PointerMoved at;
    float deltaX, deltaY; // in steps; positive is right and down
};
struct KeyChanged {
    bool down;
    bool repeated; // by the server while the key is held
    uint32 key;    // the platform's raw key code, by position
    uint32 modifiers;
    // The text of the key, with Control and Alt left out of account: UTF-8, or the platform's byte
    // of a special key (0x1c to 0x1f arrows, 0x01 Home, 0x04 End, 0x0b and 0x0c pages, 0x05 Insert,
    // 0x08 Backspace, 0x09 Tab, 0x0a Enter, 0x10 function, 0x1b Escape, 0x7f Delete). Empty for a
    // key that types nothing, keypad 5 without Num Lock and all but the last of a composed
    // character among them.
    std::string text;
    KeyStates states; // with this change
    bigtime_t when;
};
// Text that the desktop's input method gives for keys that were typed: UTF-8, unchecked, without
// control characters, less than 64 KiB.
struct TextCommitted {
    std::string text;
};
// By the user, who dragged it from some program.
struct ColorDropped {
    int x, y; // in the window's content
    rgb_color color;
};
// A link that the user drags over a window that takes links (see AcceptLinks), or drops there.
struct LinkDragged {
    int x, y;  // in the window's content
    bool over; // false: it has left, or was dropped; or the other program is gone
};
struct LinkDropped {
    int x, y;
    Link link;
    std::string file; // that the link names and may itself keep the link that is meant; or empty
};
struct FocusChanged {
    bool active; // changes by a grab are left out
};
struct FrameChanged {
    PixelRect frame; // of the content; differs from the last one; also after SetFrame
};
struct MinimizedChanged {
    bool minimized;
};
struct CloseRequested {}; // by the window manager, or another program destroyed the window

using WindowEvent =
    std::variant<PointerMoved, PointerLeft, PointerOver, ButtonPressed, ButtonReleased, WheelTurned,
                 KeyChanged, TextCommitted, ColorDropped, LinkDragged, LinkDropped, FocusChanged,
                 FrameChanged, MinimizedChanged, CloseRequested>;

// Receives the events of one window. Called by the display thread; it must be quick and must
// not wait for a looper: it posts messages.
class WindowSink {
public:
    virtual ~WindowSink() = default;
    virtual void HandleEvent(const WindowEvent& event) = 0;
};

// A key of the session, for any program. Its text is not
// known.
struct SessionKey {
    uint32 key; // 0 if keyboards came or went: then only the states matter
    bool down;  // again while it is held, from a server that repeats
    KeyStates before;
    KeyStates states; // with this change
    bigtime_t when;
};

// Receives what concerns no single window, from the display thread or the service thread. The
// same rule.
class DisplaySink {
public:
    virtual ~DisplaySink() = default;
    // The focus went to a window that is not the program's.
    virtual void FocusLeftProgram() = 0;
    virtual void MonitorsChanged() = 0;
    // The scale, the pointers' theme or size, or the double-click time.
    virtual void SettingsChanged() = 0;
    // While the session's keys are watched.
    virtual void SessionKeyChanged(const SessionKey& key) = 0;
    // The connection broke: no event follows and requests do nothing.
    virtual void DisplayLost() = 0;
};

// One form of what is dragged.
struct DragData {
    std::string type;  // a MIME type, or one of X's own
    std::string bytes; // 64 KiB at most
};

// The data that is dragged out of the program.
struct DragSpec {
    std::vector<DragData> data; // the richest form first
    std::string fileName;       // to be saved under as a file, which goes before `data`; or empty
    Image image{};              // copied
    int hotX = 0, hotY = 0;     // the pixel of the image that is under the pointer
};

// Saves a file that was dragged out. The same rule as for WindowSink.
class DragSink {
public:
    virtual ~DragSink() = default;
    // A file manager has it dropped at `path`, where nothing may be yet. `answer` is called once,
    // on any thread, when the file is there or cannot be; after some seconds it does nothing.
    virtual void SaveRequested(const std::string& path,
                               std::function<void(status_t status)> answer) = 0;
};

// A window on the screen. Its picture is kept by the server's side of this floor: an expose is
// answered by the display thread with what was presented last. Any thread may call; a call after
// the display was lost does nothing. When the destructor has returned, no event is delivered any
// more and none is being delivered, unless the sink itself destroys it.
class HostWindow {
public:
    virtual ~HostWindow() = default;

    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual void SetFrame(const PixelRect& content) = 0;
    // The black pixels around the content, from the next SetFrame on.
    virtual void SetBorder(int border) = 0;
    virtual void Raise() = 0;
    // Asks for the focus, and for the window to be shown if it is minimised.
    virtual void Activate() = 0;
    // The same for a person who asked for it outside the program: by the click or key for which the
    // desktop has the name `startupId`. The desktop is told that this one has done its work. It may
    // be empty, and come from anybody. Service thread.
    virtual void BringUp(const std::string& startupId) = 0;
    virtual void SetMinimized(bool minimized) = 0;
    virtual void SetFloating(bool floating) = 0;
    // On every virtual desktop, or on the current one only.
    virtual void SetAllDesktops(bool allDesktops) = 0;

    // While the pointer is over this window.
    virtual void SetPointer(PointerShape shape) = 0;
    virtual void SetPointer(const PointerImage& image) = 0;

    // Shows those parts of `picture` (the content, from its left-top pixel) that `damage` covers
    // and keeps them for exposes.
    virtual void Present(const Image& picture, const std::vector<PixelRect>& damage) = 0;

    // A text field of the window has the focus, and its caret is at `caret` in the content; or none
    // has it any more. Its keys go to the desktop's input method first, if there is one, and come
    // back in their order if that does not want them.
    virtual void SetTextCaret(std::optional<PixelRect> caret) = 0;

    // From now on other programs can drop links here. Colours can be dropped on every managed
    // window.
    virtual void AcceptLinks() = 0;

    // Directs all pointer and keyboard input of the session to this window until ReleaseInput;
    // pointer places are then still given in this window's coordinates. Tries for `timeout`
    // microseconds if another program holds a grab; B_TIMED_OUT if it still does. B_CANCELED if
    // another thread releases the input meanwhile, or takes it for another window.
    virtual status_t GrabInput(bigtime_t timeout) = 0;
    virtual void ReleaseInput() = 0;

    // Has what a press in this window has taken hold of dragged until the buttons are up, then
    // dropped on what is under the pointer. Input is grabbed meanwhile; the window still gets the
    // pointer's events, Escape ends the drag. Returns when it has begun. B_BUSY during another
    // drag, B_CANCELED when no button is down any more, B_BAD_VALUE for too much data, B_TIMED_OUT
    // if another program has a grab.
    virtual status_t Drag(const DragSpec& spec, std::shared_ptr<DragSink> sink) = 0;
};

struct Pointer {
    int screenX = 0;
    int screenY = 0;
    uint32 buttons = 0;
    uint32 modifiers = 0;
};

// The texts that programs exchange.
enum class SelectionKind {
    Clipboard, // what was copied
    Primary,   // what is selected, for the middle button
};

// Gets the text of a selection from its owner: it should be UTF-8, but any bytes may come.
// B_ENTRY_NOT_FOUND if nobody offers a text, B_TIMED_OUT if the other program stopped answering,
// B_NO_MEMORY for more than 16 MiB, B_CANCELED if the display is closed. Called once, by any
// thread, with nothing locked; it must not wait for a looper.
using SelectionAnswer = std::function<void(status_t status, std::string text)>;

// The connection to the display server, one for the process. Any thread may call.
class Display {
public:
    // Opens the display that the environment names. B_ERROR if there is none, or none that these
    // windows can be shown on (a line on standard error gives the reason). The names are those by
    // which the desktop's tools know the program's windows. `sink` must outlive the process's use
    // of the display. Once in a process.
    static status_t Open(DisplaySink* sink, const char* instanceName, const char* className);

    // The open display, or null.
    static Display* Shared();

    virtual ~Display() = default;

    // The icons, in several sizes, of the managed windows that are created from now on. Copied.
    // Unlike other images they have their alpha not premultiplied.
    virtual void SetIcons(const std::vector<Image>& icons) = 0;

    // Not shown yet. `sink` must outlive the window.
    virtual std::unique_ptr<HostWindow> CreateWindow(const WindowSpec& spec, WindowSink* sink) = 0;

    // Device pixels per logical pixel: 1, 1.25, 1.5 …
    virtual double Scale() const = 0;

    // The monitors' frames, the primary one first; never empty.
    virtual std::vector<PixelRect> Monitors() const = 0;

    virtual Pointer GetPointer() const = 0;

    // Within this many microseconds a second press counts as a double click.
    virtual bigtime_t DoubleClickTime() const = 0;

    // Has the sink notified of every key of the session, or no longer. Nothing is grabbed: each key
    // still goes where it would go. Waits for the server. Where it cannot be done, a line on
    // standard error reports it once.
    virtual void WatchSessionKeys(bool watch) = 0;

    // Offers `text` to all programs, until another one offers something. It does nothing if that
    // happened after the last key or press that the program has seen.
    virtual void OwnSelection(SelectionKind selection, std::string text) = 0;

    // Asks for a selection's text and returns at once, after the answer if that is at hand.
    virtual void AskSelection(SelectionKind selection, SelectionAnswer answer) = 0;

    // Leaves the clipboard's text, if the program offers it, to the desktop's clipboard manager, if
    // there is one, so that it outlives the program. Waits for at most `timeout` microseconds.
    virtual void SaveClipboard(bigtime_t timeout) = 0;

    virtual void Beep() = 0;

    // Returns when the server has carried out all requests so far.
    virtual void Sync() = 0;
};

} // namespace host

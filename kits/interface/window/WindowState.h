#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "host/draw/Canvas.h"
#include "host/x11/Display.h"
#include "kits/interface/drawing/ClipRegion.h"
#include "kits/interface/window/EventTranslator.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"

class DraggedFile;

inline constexpr uint32 kPressTaken = '_kpt'; // another window has the pointer now

// Outside every view, in window coordinates.
inline const BPoint kNowhere(-32000, -32000);

// The inside of a window. Everything is used with the window locked, but what is marked as
// constant.
struct BWindow::State {
    State(BWindow* window, BRect frame, const char* title, window_look look, window_feel feel,
          uint32 flags, uint32 workspaces);

    bool IsMenu() const { return builtFeel == kMenuWindowFeel; }
    WindowRole Role() const;
    bool IsAlert() const { return builtFeel == B_MODAL_APP_WINDOW_FEEL; }
    bool IsBubble() const;
    bool IsVisible() const { return hideCount == 0; }
    host::PixelRect DeviceFrame() const;
    host::WindowSpec Spec() const;

    // Geometry (WindowState.cpp).
    BRect Frame() const { return {place.x, place.y, place.x + width, place.y + height}; }
    BRect Bounds() const { return {0, 0, width, height}; }
    void SetFrame(BPoint newPlace, float newWidth, float newHeight);
    void TakeFrame(const host::PixelRect& device);
    void ContentResized(BRect oldBounds);
    void BringInside();
    // The desktop's scale or pointers may be others: the window keeps its place and is drawn anew.
    void FollowSettings();
    host::PixelRect GripOnScreen() const;

    // Drawing (WindowDrawing.cpp). Regions are in window coordinates.
    void Invalidate(BRect rect);
    void Update();
    void Paint(BView& view, const ClipRegion& region);
    void Present();
    ClipRegion VisibleRegion(const BView& view) const;
    // The canvas, clipped to what may be drawn of `view`; null while there is none.
    host::Canvas* CanvasFor(BView& view);
    // Views moved, came or went.
    void ClipChanged() { clipOwner = nullptr; }

    // Input (WindowInput.cpp).
    BView* ViewAt(BPoint where);
    void MouseDown(BMessage& message);
    void MouseUp(BMessage& message);
    void MouseMoved(BMessage& message);
    // The one end of a press, whatever ended it: the view that was pressed gets MouseUp(), unless
    // it is `poller`, which has seen the end itself. At kNowhere nothing is released over it.
    void EndPress(BPoint where = kNowhere, const BView* poller = nullptr);
    void ColorDropped(const BMessage& message);
    void LinkDragged(const BMessage& message);
    void LinkDropped(const BMessage& message);
    void PostDropped(BMessage& dropped, BPoint where);
    void MoveOver(BView* view, BPoint where);
    void ShowCursor();
    // The text field that gets the keys has its caret there, in its own coordinates; or none gets
    // them any more.
    void ShowTextCaret(const BView& field, BRect caret);
    void HideTextCaret();
    void WheelTurned(BMessage& message);
    void KeyChanged(BMessage& message);
    // False if the event mask of `view` does not ask for the message.
    bool WatchedKeyChanged(BView& view, BMessage& message);
    bool KeyDownInWindow(const BMessage& message);
    bool HandleShortcut(BView& view, const BMessage& keyDown);
    void FocusNext(bool backwards, bool byGroup);
    static void CollectNavigable(BView& view, std::vector<BView*>& found);
    void Activated(bool isActive, bigtime_t when);
    void GetMouse(const BView& poller, BPoint* where, uint32* buttons, bool checkQueue);
    bool TakeMouseMessage(const BView& poller, BPoint* where, uint32* buttons);
    void Forget(BView& view);

    BWindow* const window;
    double scale; // device pixels per logical pixel
    std::string title;
    const window_look look;
    const window_feel builtFeel; // constant: other threads ask which kind of window this is
    window_feel feel;
    const uint32 flags;
    uint32 workspaces;

    BPoint place; // of the content's left-top corner, on the screen
    float width;  // right minus left
    float height;
    host::PixelRect device; // the host's frame, requested or reported
    BRect grip;             // not valid: the whole window
    int32 hideCount = 1;
    bool hasRun = false;
    bool hasShown = false;
    bool isActive = false;
    bigtime_t activeSince = 0;
    bool isActivating = false; // the press being handled is what activated it
    std::atomic<bool> isMinimized = false;

    ClipRegion update;
    ClipRegion damage; // in device pixels
    std::unique_ptr<host::Canvas> canvas;
    BView* clipOwner = nullptr;
    BRect clipFrame; // in device pixels
    const ClipRegion* painting = nullptr;

    BView* focus = nullptr;
    BView* watching = nullptr; // is handling a key that it got by its event mask
    BView* over = nullptr;     // the pointer is over it
    BView* dragOver = nullptr; // a link is dragged over it
    BView* tracking = nullptr; // was pressed, and gets the release
    bool isMasked = false;     // it also gets all moves until then
    BPoint pressPlace;         // of the window when it was pressed
    BCursor cursor;            // the last one that the host got
    uint32 buttons = 0;
    BPoint lastWhere;
    std::shared_ptr<DraggedFile> draggedFile; // of the last drag
    BControl* defaultButton = nullptr;

    BView root; // parent of the views that were added to the window
    EventTranslator translator;
    const std::unique_ptr<host::HostWindow> host; // null without a display
};

#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "host/loop/ServiceLoop.h"
#include "host/x11/Display.h"
#include "host/x11/windows/BackingPixmap.h"
#include "host/x11/windows/PlaceKeeper.h"
#include "host/x11/windows/WindowProperties.h"

namespace host {

class XDisplay;

// A window of the X server: the content with the border around it. The display
// thread calls the members of the second half.
class XWindow final : public HostWindow {
public:
    XWindow(XDisplay& display, const WindowSpec& spec, WindowSink* sink);
    ~XWindow() override;

    void Show() override;
    void Hide() override;
    void SetFrame(const PixelRect& content) override;
    void SetBorder(int border) override { fBorder = BoundedBorder(border); }
    void Raise() override;
    void Activate() override;
    void BringUp(const std::string& startupId) override;
    void SetMinimized(bool minimized) override;
    void SetFloating(bool floating) override;
    void SetAllDesktops(bool allDesktops) override;
    void SetPointer(PointerShape shape) override;
    void SetPointer(const PointerImage& image) override;
    void Present(const Image& picture, const std::vector<PixelRect>& damage) override;
    void SetTextCaret(std::optional<PixelRect> caret) override;
    void AcceptLinks() override;
    status_t GrabInput(bigtime_t timeout) override;
    void ReleaseInput() override;
    status_t Drag(const DragSpec& spec, std::shared_ptr<DragSink> sink) override;

    // The display thread's part. Each calls the sink at most once, as the last thing it does.
    void Notify(const WindowEvent& event) { fSink->HandleEvent(event); }
    void HandleExpose(const xcb_expose_event_t& event);
    void HandleConfigure(const xcb_configure_notify_event_t& event);
    void HandleMap(const xcb_map_notify_event_t& event);
    void HandleReparent(const xcb_reparent_notify_event_t& event);
    void HandleStateChange();
    void HandleFocus(bool active);
    // After a press: takes the focus where the window manager was asked not to give it, or where
    // there is none.
    void HandlePress(xcb_timestamp_t time);

    // The place in the content, of one in the window or, for any other `window`, on the screen.
    std::pair<int, int> ContentPlace(xcb_window_t window, int x, int y);

private:
    static int BoundedBorder(int border);
    void Create(const WindowSpec& spec);
    void Map(bool takesFocus);
    void MapUnlessActive();
    void StackOnTop() const;
    PixelRect Outer(const PixelRect& content) const;
    void NoteVisible(bool visible);
    bool HasWindowManager() const;
    void ShowCursor(xcb_cursor_t cursor);
    void ActivateAt(xcb_timestamp_t time);
    void ChangeState(bool add, AtomIndex state);
    void Configure(const PixelRect& outer);
    bool CanBeMinimized() const;
    void TakeFocus(xcb_timestamp_t time);
    void AcceptFocus();
    void KeepPlace(const PixelRect& content);
    void AskForPlace(std::pair<int, int> corner);
    bool IsStale(const xcb_configure_notify_event_t& event) const;
    bool FindPlace(const xcb_configure_notify_event_t& event, int& left, int& top) const;

    XDisplay& fDisplay;
    const Connection& fConnection;
    WindowSink* const fSink;
    const WindowKind fKind;
    std::atomic<int> fBorder;
    const bool fIsResizable;
    const xcb_window_t fId;

    std::atomic<bool> fTakesFocusItself = false; // its manager was asked not to give it
    std::atomic<xcb_window_t> fParent;           // written by the display thread

    // The display thread's.
    PixelRect fReported;                       // the frame that the sink knows
    std::atomic<bool> fReportedActive = false; // also read by the service thread
    bool fReportedMinimized = false;
    std::optional<PixelRect> fKeptPlace; // where it was when a window manager let go of it
    std::unique_ptr<Timer> fFocusCheck;
    std::unique_ptr<Timer> fBringUpChecks[2]; // the service thread's

    std::mutex fLock; // for what follows; not held while the sink or the server is waited for
    BackingPixmap fPicture;
    PixelRect fFrame; // of the content, as last asked for or as the server reports it
    std::optional<PixelRect> fAskedPlace; // until it is mapped there
    InitialState fState;
    bool fIsShown = false;
    uint32 fConfigureSequence = 0;
    PlaceKeeper fPlace;
};

} // namespace host

#pragma once

#include <atomic>
#include <mutex>

#include "host/x11/Display.h"
#include "host/x11/EventThread.h"
#include "host/x11/exchange/DragSource.h"
#include "host/x11/exchange/DropTarget.h"
#include "host/x11/exchange/Selections.h"
#include "host/x11/server/Connection.h"
#include "host/x11/server/DesktopSettings.h"
#include "host/x11/server/InputGrab.h"
#include "host/x11/server/MonitorList.h"
#include "host/x11/server/WindowRegistry.h"
#include "host/x11/windows/BackingPixmap.h"
#include "host/x11/windows/Cursors.h"
#include "host/x11/windows/WindowProperties.h"

namespace host {

// The display on an X server, and what its windows and its thread share.
class XDisplay final : public Display {
public:
    // `name` null means the environment's display. Null, with the reason in `problem`, if it cannot
    // be used.
    static std::unique_ptr<XDisplay> Connect(const char* name, DisplaySink* sink,
                                             const char* instanceName, const char* className,
                                             std::string& problem);
    // After all its windows.
    ~XDisplay() override;

    void SetIcons(const std::vector<Image>& icons) override;
    std::unique_ptr<HostWindow> CreateWindow(const WindowSpec& spec, WindowSink* sink) override;
    double Scale() const override { return Settings().scale; }
    std::vector<PixelRect> Monitors() const override { return fMonitors.Frames(); }
    Pointer GetPointer() const override;
    bigtime_t DoubleClickTime() const override { return Settings().doubleClickTime; }
    void WatchSessionKeys(bool watch) override {
        fThread.Keys().Watch(watch, fIdentity.instanceName);
    }
    void OwnSelection(SelectionKind selection, std::string text) override {
        fSelections.Own(selection, fLastInputTime, std::move(text));
    }
    void AskSelection(SelectionKind selection, SelectionAnswer answer) override {
        fSelections.Ask(selection, std::move(answer));
    }
    void SaveClipboard(bigtime_t timeout) override { fSelections.SaveClipboard(timeout); }
    void Beep() override;
    void Sync() override;

    const Connection& Server() const { return *fConnection; }
    const Pens& DrawingPens() const { return fPens; }
    const ProgramIdentity& Identity() const { return fIdentity; }
    std::vector<std::vector<uint32>> Icons() const;
    WindowRegistry& Windows() { return fWindows; }
    InputGrab& Grab() { return fGrab; }
    Cursors& PointerShapes() { return fCursors; }
    DesktopSettings Settings() const;
    // Reads the settings again if `event` announces other ones; true if they are. Display thread.
    bool UpdateSettings(const xcb_generic_event_t& event);
    host::Selections& Selections() { return fSelections; }
    InputMethod& TextInput() { return fThread.TextInput(); }
    DragSource& Drags() { return fDrags; }
    DropTarget& Drops() { return fDrops; }
    MonitorList& MonitorFrames() { return fMonitors; }

    // The server's time of the last press that any window got; 0 before the first.
    xcb_timestamp_t LastInputTime() const { return fLastInputTime; }
    void NoteInputTime(xcb_timestamp_t time) { fLastInputTime = time; }
    // The same, counting the keys that other programs got while they are watched.
    xcb_timestamp_t LastKnownPressTime() const;

    // The window that an alert belongs to: the last one that was shown, or None. Alerts and menus
    // do not count.
    xcb_window_t AlertParent() const { return fAlertParent; }
    void SetAlertParent(xcb_window_t window) { fAlertParent = window; }
    void ClearAlertParent(xcb_window_t window) {
        fAlertParent.compare_exchange_strong(window, XCB_WINDOW_NONE);
    }

private:
    XDisplay(std::unique_ptr<Connection> connection, DisplaySink* sink, ProgramIdentity identity);
    void MakeLeader();
    void Deliver(const DropEvent& drop, xcb_window_t id, xcb_timestamp_t time);

    const std::unique_ptr<Connection> fConnection;
    const Pens fPens;
    ProgramIdentity fIdentity;
    MonitorList fMonitors;
    WindowRegistry fWindows;
    InputGrab fGrab;
    Cursors fCursors;
    host::Selections fSelections;
    DragSource fDrags;
    DropTarget fDrops;
    std::atomic<xcb_timestamp_t> fLastInputTime = 0;
    std::atomic<xcb_window_t> fAlertParent = XCB_WINDOW_NONE;

    SettingsReader fSettingsReader;
    mutable std::mutex fLock;
    // Guarded by fLock.
    DesktopSettings fSettings;
    std::vector<std::vector<uint32>> fIcons;

    EventThread fThread; // ends before the rest
};

} // namespace host

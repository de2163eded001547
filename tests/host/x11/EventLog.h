#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/x11/XDisplay.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Desk.h"
#include "tests/support/Wait.h"

namespace host {

inline std::ostream& operator<<(std::ostream& out, const PixelRect& rect) {
    return out << '(' << rect.left << ' ' << rect.top << ' ' << rect.right << ' ' << rect.bottom
               << ')';
}

// Keeps all events of a window.
class EventLog final : public WindowSink {
public:
    void HandleEvent(const WindowEvent& event) override {
        {
            std::lock_guard lock(fLock);
            fEvents.push_back(event);
        }
        if (fOnEvent)
            fOnEvent(event);
    }

    // Runs on the display thread with each event. Set it before events can come.
    void OnEvent(std::function<void(const WindowEvent&)> hook) { fOnEvent = std::move(hook); }

    template <typename T>
    std::vector<T> All() const {
        std::lock_guard lock(fLock);
        std::vector<T> found;
        for (const WindowEvent& event : fEvents) {
            if (auto* wanted = std::get_if<T>(&event))
                found.push_back(*wanted);
        }
        return found;
    }
    // A default one if there is none.
    template <typename T>
    T Last() const {
        auto all = All<T>();
        return all.empty() ? T{} : all.back();
    }
    template <typename T>
    bool Await(std::size_t count = 1) const {
        return test::WaitUntil([&] { return All<T>().size() >= count; });
    }
    void Forget() {
        std::lock_guard lock(fLock);
        fEvents.clear();
    }

private:
    mutable std::mutex fLock;
    std::vector<WindowEvent> fEvents;
    std::function<void(const WindowEvent&)> fOnEvent;
};

class DisplayLog final : public DisplaySink {
public:
    void FocusLeftProgram() override { focusLosses++; }
    void MonitorsChanged() override { monitorChanges++; }
    void SettingsChanged() override { settingsChanges++; }
    void SessionKeyChanged(const SessionKey& key) override {
        std::lock_guard lock(fLock);
        fKeys.push_back(key);
    }
    void DisplayLost() override { losses++; }

    // Those since the last call.
    std::vector<SessionKey> TakeKeys() {
        std::lock_guard lock(fLock);
        return std::exchange(fKeys, {});
    }

    std::atomic<int> focusLosses = 0;
    std::atomic<int> monitorChanges = 0;
    std::atomic<int> settingsChanges = 0;
    std::atomic<int> losses = 0;

private:
    std::mutex fLock;
    std::vector<SessionKey> fKeys;
};

// A picture in memory, made pixel by pixel.
class Pixels {
public:
    Pixels(int width, int height, const std::function<uint32(int, int)>& color)
        : fWidth(width)
        , fHeight(height) {
        for (int y = 0; y < height; y++) {
            for (int x = 0; x < width; x++)
                fPixels.push_back(color(x, y));
        }
    }
    Pixels(int width, int height, uint32 color)
        : Pixels(width, height, [=](int, int) { return color; }) {}

    Image Picture() const {
        return {reinterpret_cast<const std::uint8_t*>(fPixels.data()), fWidth, fHeight, fWidth * 4};
    }
    PixelRect Bounds() const { return {0, 0, fWidth, fHeight}; }
    uint32 At(int x, int y) const { return fPixels[y * fWidth + x]; }

private:
    int fWidth, fHeight;
    std::vector<uint32> fPixels;
};

inline uint32 Pattern(int x, int y) {
    return static_cast<uint32>((x * 7 & 0xff) << 16 | (y * 5 & 0xff) << 8 | ((x ^ y) & 0xff));
}

// A window of the program with its events. `events` outlives `window`.
struct TestWindow {
    std::unique_ptr<EventLog> events = std::make_unique<EventLog>();
    std::unique_ptr<HostWindow> window;
    std::string title;

    HostWindow* operator->() const { return window.get(); }
};

// A display on a desktop, and windows on it.
class TestDisplay {
public:
    explicit TestDisplay(test::Desk& desktop)
        : fDesk(desktop) {
        std::string problem;
        fDisplay =
            XDisplay::Connect(desktop.Name().c_str(), &fSink, "barprogram", "BarProgram", problem);
        if (!fDisplay)
            throw std::runtime_error(problem);
    }

    // The next program that connects is given the same numbers for its windows: the window manager
    // must not take them for those of this one.
    ~TestDisplay() {
        uint32 mask = xcb_get_setup(fDisplay->Server())->resource_id_mask;
        xcb_window_t base = fDisplay->Identity().leader & ~mask;
        fDisplay.reset();
        test::WaitUntil([&] {
            return std::ranges::none_of(
                fDesk.Stacking(), [&](xcb_window_t window) { return (window & ~mask) == base; });
        });
    }

    XDisplay* operator->() const { return fDisplay.get(); }
    DisplayLog& Sink() { return fSink; }
    test::Desk& OnScreen() { return fDesk; }

    TestWindow Create(WindowSpec spec) {
        TestWindow made;
        // Told apart by their titles, also those of two programs.
        static int sCreated = 0;
        made.title = spec.title = "Window " + std::to_string(++sCreated);
        made.window = fDisplay->CreateWindow(spec, made.events.get());
        return made;
    }
    // Shown, and for a managed window taken over by the window manager.
    TestWindow CreateShown(const WindowSpec& spec, uint32 color = 0xc0c0c0) {
        TestWindow made = Create(spec);
        Pixels picture(spec.frame.Width(), spec.frame.Height(), color);
        made->Present(picture.Picture(), {picture.Bounds()});
        made->Show();
        if (!test::WaitUntil([&] { return IsShown(made); }))
            throw std::runtime_error("the window was not shown");
        return made;
    }

    test::WindowInfo Describe(const TestWindow& window) const {
        auto found = fDesk.Windows([&](const test::WindowInfo& info) {
            return info.title == window.title && info.instance == "barprogram";
        });
        return found.empty() ? test::WindowInfo{} : found[0];
    }
    // Returns when the display thread has handled all events that the server has sent so far.
    void AwaitEvents() {
        TestWindow marker = Create({.kind = WindowKind::Menu});
        fDisplay->Sync();
        const auto message =
            fDesk.Message(IdOf(marker), "WM_PROTOCOLS", {fDesk.Atom("WM_DELETE_WINDOW")});
        xcb_send_event(fDesk.Connection(), false, message.window, 0,
                       reinterpret_cast<const char*>(&message));
        fDesk.Sync();
        if (!marker.events->Await<CloseRequested>())
            throw std::runtime_error("the display thread hangs");
    }

    xcb_window_t IdOf(const TestWindow& window) const { return Describe(window).id; }
    bool IsShown(const TestWindow& window) const { return Describe(window).viewable; }
    bool IsActive(const TestWindow& window) const { return fDesk.ActiveWindow() == IdOf(window); }
    // The content, from the window that the server has.
    PixelRect FrameOf(const TestWindow& window, int border) const {
        test::Box box = Describe(window).frame;
        return {box.x + border, box.y + border, box.x + box.width - border,
                box.y + box.height - border};
    }

private:
    test::Desk& fDesk;
    DisplayLog fSink;
    std::unique_ptr<XDisplay> fDisplay;
};

inline WindowSpec BarSpec(const PixelRect& frame) {
    return {.kind = WindowKind::Bar,
            .frame = frame,
            .border = 1,
            .resizable = false,
            .floating = true,
            .allDesktops = true};
}
inline WindowSpec MenuSpec(const PixelRect& frame) {
    return {.kind = WindowKind::Menu, .frame = frame};
}
inline WindowSpec NormalSpec(const PixelRect& frame) {
    return {.frame = frame};
}

// The layout, as setxkbmap's -layout has it, and more arguments of that program.
inline void SetLayout(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"setxkbmap", "-option", "", "-layout"});
    test::ChildProcess::Options options;
    options.arguments = std::move(arguments);
    EXPECT_EQ(test::ChildProcess(options).Wait(), 0);
}

} // namespace host

#pragma once

#include <algorithm>

#include <gmock/gmock.h>

#include "host/x11/XDisplay.h"
#include "tests/support/Peer.h"
#include "tests/support/Recorded.h"

namespace host {

using test::Box;
using test::Desk;
using test::Peer;
using test::PlainWindow;
using test::WaitUntil;
using testing::ElementsAre;

// Keeps all events of a window.
class EventLog final : public WindowSink, public test::Recorded<WindowEvent> {
public:
    using Recorded::All;

    void HandleEvent(const WindowEvent& event) override { Add(event); }
    template <typename T>
    std::vector<T> All() const {
        std::vector<T> found;
        for (const WindowEvent& event : All()) {
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
        return WaitUntil([&] { return All<T>().size() >= count; });
    }
};

class DisplayLog final : public DisplaySink {
public:
    void FocusLeftProgram() override {}
    void MonitorsChanged() override {}
    void SettingsChanged() override {}
    void SessionKeyChanged(const SessionKey& key) override { keys.Add(key); }
    void DisplayLost() override {}

    test::Recorded<SessionKey> keys;
};

// A picture in memory, of one colour at first.
struct Pixels {
    Pixels(int pixelWidth, int pixelHeight, uint32 color)
        : width(pixelWidth)
        , height(pixelHeight)
        , words(static_cast<std::size_t>(width * height), color) {}
    operator Image() const {
        return {reinterpret_cast<const uint8*>(words.data()), width, height, width * 4};
    }

    int width, height;
    std::vector<uint32> words;
};

// A window of the program with its events. `events` outlives `window`.
struct TestWindow {
    std::unique_ptr<EventLog> events = std::make_unique<EventLog>();
    std::unique_ptr<HostWindow> window;
    xcb_window_t id = XCB_NONE;

    HostWindow* operator->() const { return window.get(); }
    bool BecomesActive(bool active = true) const {
        return WaitUntil([&] { return events->Last<FocusChanged>().active == active; });
    }
};

inline WindowSpec BarSpec(const PixelRect& frame) {
    return {.kind = WindowKind::Bar, .frame = frame, .border = 1, .floating = true};
}
inline WindowSpec MenuSpec(const PixelRect& frame) {
    return {.kind = WindowKind::Menu, .frame = frame};
}

// A display on a desk, and windows on it.
class TestDisplay {
public:
    explicit TestDisplay(Desk& desk)
        : fDesk(desk) {
        std::string problem;
        fDisplay = XDisplay::Connect(desk.Name().c_str(), &fSink, "program", "Program", problem);
        if (!fDisplay)
            throw std::runtime_error(problem);
    }

    // The next program that connects is given the same numbers for its windows: the window manager
    // must not take them for those of this one.
    ~TestDisplay() {
        uint32 mask = xcb_get_setup(fDisplay->Server())->resource_id_mask;
        xcb_window_t base = fDisplay->Identity().leader & ~mask;
        fDisplay.reset();
        WaitUntil([&] {
            return std::ranges::none_of(
                fDesk.Stacking(), [&](xcb_window_t window) { return (window & ~mask) == base; });
        });
    }

    XDisplay* operator->() const { return fDisplay.get(); }
    DisplayLog& Sink() { return fSink; }

    TestWindow Create(WindowSpec spec) {
        TestWindow made;
        // Told apart by their titles, those of two programs included.
        static int sCreated = 0;
        spec.title = "Window " + std::to_string(++sCreated);
        made.window = fDisplay->CreateWindow(spec, made.events.get());
        fDisplay->Sync();
        made.id =
            fDesk.Windows([&](const auto& info) { return info.title == spec.title; }).at(0).id;
        return made;
    }
    // Shown, and for a managed window taken over by the window manager.
    TestWindow CreateShown(const WindowSpec& spec, uint32 color = 0xc0c0c0) {
        TestWindow made = Create(spec);
        Pixels picture(spec.frame.Width(), spec.frame.Height(), color);
        made->Present(picture, {{0, 0, picture.width, picture.height}});
        made->Show();
        EXPECT_TRUE(WaitUntil([&] { return fDesk.IsViewable(made.id); }));
        return made;
    }

    // Returns when the display thread has handled all events that the server has sent so far.
    void AwaitEvents() {
        TestWindow marker = Create(MenuSpec({}));
        Peer sender(fDesk);
        sender.Send(marker.id, marker.id, "WM_PROTOCOLS", {fDesk.Atom("WM_DELETE_WINDOW")});
        EXPECT_TRUE(marker.events->Await<CloseRequested>()) << "the display thread hangs";
    }

private:
    Desk& fDesk;
    DisplayLog fSink;
    std::unique_ptr<XDisplay> fDisplay;
};

// A program on the shared desk, and another one.
class X11Test : public testing::Test {
protected:
    Desk& desk = Desk::Shared();
    TestDisplay display{desk};
    Peer peer{desk};
};

} // namespace host

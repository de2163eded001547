#include <atomic>
#include <cstring>
#include <thread>

#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

using WindowTest = X11Test;

constexpr PixelRect kFrame{200, 200, 400, 300};

TEST_F(WindowTest, AlertStandsAboveTheFloatingBar) {
    TestWindow bar = display.CreateShown(BarSpec({100, 80, 340, 112}));
    TestWindow alert =
        display.CreateShown({.kind = WindowKind::Alert, .frame = {120, 90, 320, 190}}, 0x00ff00);
    EXPECT_TRUE(alert.BecomesActive());
    bar->Raise();
    EXPECT_TRUE(WaitUntil([&] { return desk.Pixel(200, 100) == 0x00ff00; }));
}

TEST_F(WindowTest, ItsPictureTakesAnyDamageAndOutlivesGrowthAndCover) {
    TestWindow menu = display.CreateShown(MenuSpec({0, 0, 1200, 600}), 0x336699);
    // Too large for one request, wider than the window and lower.
    Pixels picture(1300, 500, 0x00ff00);
    picture.words[1300 * 499 + 1000] = 0xff0000;
    menu->Present(picture, {{3, 5, 1190, 500},
                            {-50, -50, 2, 2},
                            {1195, 495, 5000, 5000},
                            {10, 10, 10, 40},
                            {100, 550, 200, 580}});
    const std::size_t damaged = 1187 * 495 + 2 * 2 + 5 * 5;
    menu->SetFrame({0, 0, 1220, 700});
    display.CreateShown(MenuSpec({0, 0, 1200, 600}))->Hide();
    EXPECT_TRUE(WaitUntil([&] {
        const test::Picture seen = desk.Grab({0, 0, 1220, 700});
        return seen.Count(0x00ff00) == damaged - 1 && seen.At(1000, 499) == 0xff0000 &&
               seen.Count(0x336699) == 1200ul * 600 - damaged &&
               seen.Count(0xffffff) == 1220 * 700 - 1200 * 600;
    }));
}

TEST_F(WindowTest, AnswersPings) {
    TestWindow window = display.CreateShown({.frame = kFrame});
    peer.Watch(desk.Root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const std::vector<uint32> ping = {desk.Atom("_NET_WM_PING"), 12345, window.id, 0, 0};
    peer.Send(window.id, window.id, "WM_PROTOCOLS", ping);
    EXPECT_EQ(peer.AwaitMessage("WM_PROTOCOLS"), ping);
}

TEST_F(WindowTest, SurvivesWhatOthersDoToIt) {
    TestWindow window = display.CreateShown({.frame = kFrame});
    TestWindow bar = display.CreateShown(BarSpec({100, 80, 340, 112}));
    xcb_connection_t* rival = desk.Connection();
    const xcb_window_t id = window.id;
    for (const char* name : {"WM_STATE", "_NET_WM_STATE"}) {
        xcb_atom_t atom = desk.Atom(name);
        xcb_change_property(rival, XCB_PROP_MODE_REPLACE, id, atom, XCB_ATOM_STRING, 8, 3, "abc");
        xcb_change_property(rival, XCB_PROP_MODE_REPLACE, id, atom, atom, 16, 1, "ab");
        xcb_change_property(rival, XCB_PROP_MODE_REPLACE, id, atom, XCB_ATOM_ATOM, 32, 0, nullptr);
    }
    for (uint8_t format : {8, 16, 32}) {
        for (const char* type : {"WM_PROTOCOLS", "_NET_WM_STATE", "WM_DELETE_WINDOW"}) {
            auto message = desk.Message(id, type, {});
            message.format = format;
            xcb_send_event(rival, false, id, 0, reinterpret_cast<const char*>(&message));
        }
    }
    for (int type = 2; type < 128; type++) {
        // All kinds of events have their window in one of these places.
        for (int place : {4, 8, 12}) {
            std::string garbage(32, '\xff');
            garbage[0] = static_cast<char>(type);
            std::memcpy(garbage.data() + place, &id, sizeof(id));
            xcb_send_event(rival, false, id, 0, garbage.data());
        }
    }
    xcb_destroy_window(rival, id);
    desk.Sync();
    EXPECT_TRUE(window.events->Await<CloseRequested>());
    window->Show();
    window->SetFrame({1, 2, 3, 4});
    window->Activate();
    window.window.reset();
    desk.Close(bar.id);
    EXPECT_TRUE(bar.events->Await<CloseRequested>()) << "the display thread still works";
}

TEST_F(WindowTest, ItsDestructorWaitsForAnEventThatIsBeingDelivered) {
    struct SlowSink final : WindowSink {
        void HandleEvent(const WindowEvent&) override {
            isInside = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            isInside = false;
        }
        std::atomic<bool> isInside = false;
    } sink;
    auto window = display->CreateWindow(MenuSpec({100, 50, 200, 150}), &sink);
    desk.MoveTo(150, 100);
    window->Show();
    ASSERT_TRUE(WaitUntil([&] { return sink.isInside.load(); }));
    window.reset();
    EXPECT_FALSE(sink.isInside);
}

} // namespace
} // namespace host

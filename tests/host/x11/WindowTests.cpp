#include <cstring>
#include <thread>

#include <gmock/gmock.h>

#include "tests/host/x11/EventLog.h"
#include "tests/support/Peer.h"

namespace host {
namespace {

using test::Desk;
using test::Peer;
using test::WaitUntil;
using testing::ElementsAre;

constexpr uint32 kEverywhere = 0xffffffff;

class Windows : public testing::Test {
protected:
    Desk& fDesk = Desk::Shared();
    TestDisplay fDisplay{fDesk};
};

TEST_F(Windows, TheBarComesBackToThePixelWithItsState) {
    TestWindow bar = fDisplay.CreateShown(BarSpec({100, 80, 340, 112}));
    const PixelRect frame{301, 310, 432, 352};
    bar->SetFrame(frame);
    for (int i = 0; i < 3; i++) {
        bar->Hide();
        ASSERT_TRUE(WaitUntil([&] { return !fDisplay.IsShown(bar); }));
        bar->Show();
        ASSERT_TRUE(WaitUntil([&] { return fDisplay.IsShown(bar); }));
    }
    EXPECT_TRUE(WaitUntil([&] {
        const xcb_window_t id = fDisplay.IdOf(bar);
        return fDisplay.FrameOf(bar, 1) == frame && fDesk.HasState(id, "_NET_WM_STATE_ABOVE") &&
               fDesk.Cardinals(id, "_NET_WM_DESKTOP") == std::vector{kEverywhere};
    })) << fDisplay.FrameOf(bar, 1);
    EXPECT_EQ(bar.events->Last<FrameChanged>().frame, frame);
}

TEST_F(Windows, FollowsTheWindowManager) {
    TestWindow window = fDisplay.CreateShown(NormalSpec({200, 200, 400, 300}));
    window.events->Forget();
    // As a person drags it: the window manager moves its own frame, the window in it stays put.
    constexpr uint32 kStaticGravityAndBothPlaces = XCB_GRAVITY_STATIC | 1 << 8 | 1 << 9 | 2 << 12;
    const auto move = fDesk.Message(fDisplay.IdOf(window), "_NET_MOVERESIZE_WINDOW",
                                    {kStaticGravityAndBothPlaces, 240, 225});
    xcb_send_event(fDesk.Connection(), false, fDesk.Root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&move));
    fDesk.Sync();
    EXPECT_TRUE(WaitUntil([&] {
        return window.events->Last<FrameChanged>().frame == PixelRect{240, 225, 440, 325};
    })) << window.events->Last<FrameChanged>().frame;
    EXPECT_EQ(fDisplay.FrameOf(window, 0), (PixelRect{240, 225, 440, 325}));
}

TEST_F(Windows, ShowsIconsAsTheyAre) {
    Pixels half(2, 1, 0x80402000);
    fDisplay->SetIcons({half.Picture(), {nullptr, 5, 5, 20}});
    TestWindow window = fDisplay.Create(NormalSpec({200, 200, 400, 300}));
    fDisplay->Sync();
    window->Show();
    EXPECT_TRUE(WaitUntil([&] { return fDisplay.IsShown(window); }));
    EXPECT_THAT(fDesk.Cardinals(fDisplay.IdOf(window), "_NET_WM_ICON"),
                ElementsAre(2, 1, 0x80402000, 0x80402000));
}

TEST_F(Windows, AlertStandsAboveTheFloatingBar) {
    TestWindow bar = fDisplay.CreateShown(BarSpec({100, 80, 340, 112}));
    TestWindow alert =
        fDisplay.CreateShown({.kind = WindowKind::Alert, .frame = {120, 90, 320, 190}}, 0x00ff00);
    EXPECT_TRUE(WaitUntil([&] { return fDisplay.IsActive(alert); }));
    bar->Raise();
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Pixel(200, 100) == 0x00ff00; }));
    EXPECT_THAT(fDisplay.Describe(alert).types, ElementsAre("_NET_WM_WINDOW_TYPE_DIALOG"));
}

TEST_F(Windows, GrownWindowKeepsItsPictureAndIsWhiteBesides) {
    TestWindow menu = fDisplay.CreateShown(MenuSpec({100, 80, 200, 120}), 0x336699);
    menu->SetFrame({100, 80, 260, 180});
    EXPECT_TRUE(WaitUntil([&] {
        test::Picture seen = fDesk.Grab({100, 80, 160, 100});
        return seen.Count(0x336699) == 100 * 40 && seen.Count(0xffffff) == 160 * 100 - 100 * 40;
    }));
    // Also when another window covered it.
    fDisplay.CreateShown(MenuSpec({90, 70, 300, 200}), 0x00ff00)->Hide();
    EXPECT_TRUE(WaitUntil([&] {
        return fDesk.Grab({100, 80, 160, 100}).Count(0x336699) == 100 * 40;
    }));
}

TEST_F(Windows, PresentsOnlyTheDamageAndAnySize) {
    TestWindow menu = fDisplay.CreateShown(MenuSpec({0, 0, 1200, 880}), 0xffffff);
    Pixels picture(1300, 700, Pattern);
    menu->Present(picture.Picture(), {{3, 5, 1190, 690},
                                      {-50, -50, 2, 2},
                                      {1100, 600, 5000, 5000},
                                      {10, 10, 10, 40},
                                      {800, 800, 900, 850}});
    EXPECT_TRUE(WaitUntil([&] {
        test::Picture seen = fDesk.Grab({0, 0, 1200, 880});
        for (int y = 0; y < 880; y++) {
            for (int x = 0; x < 1200; x++) {
                bool isDamaged = (x >= 3 && y >= 5 && x < 1190 && y < 690) || (x < 2 && y < 2) ||
                                 (x >= 1100 && y >= 600 && y < 700);
                if (seen.At(x, y) != (isDamaged ? picture.At(x, y) : 0xffffff))
                    return false;
            }
        }
        return true;
    }));
}

TEST_F(Windows, AnswersPings) {
    TestWindow window = fDisplay.CreateShown(NormalSpec({200, 200, 400, 300}));
    const xcb_window_t id = fDisplay.IdOf(window);
    Peer manager(fDesk);
    manager.Watch(fDesk.Root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const std::vector<uint32> ping = {fDesk.Atom("_NET_WM_PING"), 12345, id, 0, 0};
    manager.Send(id, id, "WM_PROTOCOLS", ping);
    EXPECT_EQ(manager.AwaitMessage("WM_PROTOCOLS"), ping);
}

TEST_F(Windows, SurvivesWhatOthersDoToThem) {
    TestWindow window = fDisplay.CreateShown(NormalSpec({200, 200, 400, 300}));
    TestWindow bar = fDisplay.CreateShown(BarSpec({100, 80, 340, 112}));
    xcb_connection_t* rival = fDesk.Connection();
    xcb_window_t id = fDisplay.IdOf(window);
    for (const char* name : {"WM_STATE", "_NET_WM_STATE"}) {
        xcb_atom_t atom = fDesk.Atom(name);
        xcb_change_property(rival, XCB_PROP_MODE_REPLACE, id, atom, XCB_ATOM_STRING, 8, 3, "abc");
        xcb_change_property(rival, XCB_PROP_MODE_REPLACE, id, atom, atom, 16, 1, "ab");
        xcb_change_property(rival, XCB_PROP_MODE_REPLACE, id, atom, XCB_ATOM_ATOM, 32, 0, nullptr);
    }
    for (uint8_t format : {8, 16, 32}) {
        for (const char* type : {"WM_PROTOCOLS", "_NET_WM_STATE", "WM_DELETE_WINDOW"}) {
            auto message = fDesk.Message(id, type, {});
            message.format = format;
            xcb_send_event(rival, false, id, 0, reinterpret_cast<const char*>(&message));
        }
    }
    for (int type = 2; type < 128; type++) {
        uint8_t garbage[32];
        std::fill(std::begin(garbage), std::end(garbage), 0xff);
        garbage[0] = static_cast<uint8_t>(type);
        // All kinds of events have their window in one of these places.
        for (int place : {4, 8, 12}) {
            std::memcpy(garbage + place, &id, sizeof(id));
            xcb_send_event(rival, false, id, 0, reinterpret_cast<const char*>(garbage));
        }
    }
    xcb_destroy_window(rival, id);
    fDesk.Sync();
    EXPECT_TRUE(window.events->Await<CloseRequested>());
    window->Show();
    window->SetFrame({1, 2, 3, 4});
    window->Activate();
    window.window.reset();
    fDesk.Close(fDisplay.IdOf(bar));
    EXPECT_TRUE(bar.events->Await<CloseRequested>()) << "the display thread still works";
}

TEST_F(Windows, CanBeDestroyedByTheirSink) {
    TestWindow window = fDisplay.Create(NormalSpec({200, 200, 400, 300}));
    std::atomic<bool> isGone = false;
    window.events->OnEvent([&](const WindowEvent& event) {
        if (std::holds_alternative<CloseRequested>(event)) {
            window.window.reset();
            isGone = true;
        }
    });
    window->Show();
    ASSERT_TRUE(WaitUntil([&] { return fDisplay.IsShown(window); }));
    fDesk.Close(fDisplay.IdOf(window));
    EXPECT_TRUE(WaitUntil([&] { return isGone.load(); }));
    EXPECT_TRUE(WaitUntil([&] { return fDisplay.IdOf(window) == XCB_WINDOW_NONE; }));
}

TEST_F(Windows, NoEventComesAfterTheDestructor) {
    std::atomic<bool> isEnding = false;
    std::thread mover([&] {
        for (int i = 0; !isEnding; i++)
            fDesk.MoveTo(100 + i % 100, 100);
    });
    for (int i = 0; i < 30; i++) {
        TestWindow menu = fDisplay.Create(MenuSpec({100, 50, 200, 150}));
        std::atomic<bool> isDestroyed = false, isLate = false;
        menu.events->OnEvent([&](const WindowEvent&) { isLate = isLate || isDestroyed; });
        menu->Show();
        ASSERT_TRUE(menu.events->Await<PointerMoved>(3));
        menu.window.reset();
        isDestroyed = true;
        fDisplay->Sync();
        EXPECT_FALSE(isLate);
    }
    isEnding = true;
    mover.join();
}

} // namespace
} // namespace host

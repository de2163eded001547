
#include <gmock/gmock.h>

#include "tests/host/x11/EventLog.h"
#include "tests/support/Peer.h"

namespace host {
namespace {

using test::Desk;
using test::Peer;
using test::WaitUntil;
using testing::ElementsAre;

// The bytes of published settings, as a settings manager of this machine's byte order writes them.
class Published {
public:
    explicit Published(bool bigEndian = false)
        : fBigEndian(bigEndian) {
        fBytes = {static_cast<uint8>(bigEndian), 0, 0, 0};
        Add(uint32{1});
        Add(uint32{0});
    }
    Published& Integer(std::string_view name, int32 value) {
        Begin(0, name);
        return Add(static_cast<uint32>(value));
    }
    Published& Text(std::string_view name, std::string_view value) {
        Begin(1, name);
        Add(static_cast<uint32>(value.size()));
        return Add(value);
    }
    Published& Color(std::string_view name) {
        Begin(2, name);
        Add(uint32{0});
        return Add(uint32{0});
    }
    std::vector<uint8> Bytes() const {
        std::vector<uint8> bytes = fBytes;
        bytes[fBigEndian ? 11 : 8] = fCount;
        return bytes;
    }

private:
    void Begin(uint8 type, std::string_view name) {
        fCount++;
        fBytes.insert(fBytes.end(), {type, 0});
        Word(static_cast<uint32>(name.size()), 2);
        Add(name);
        Add(uint32{7});
    }
    void Word(uint32 value, int size) {
        for (int i = 0; i < size; i++)
            fBytes.push_back(value >> 8 * (fBigEndian ? size - 1 - i : i));
    }
    Published& Add(uint32 value) {
        Word(value, 4);
        return *this;
    }
    Published& Add(std::string_view text) {
        fBytes.insert(fBytes.end(), text.begin(), text.end());
        while (fBytes.size() % 4)
            fBytes.push_back(0);
        return *this;
    }

    bool fBigEndian;
    uint8 fCount = 0;
    std::vector<uint8> fBytes;
};

double ScaleOf(const Published& published, std::string_view resources = {}) {
    return ReadDesktopSettings(published.Bytes(), resources).scale;
}

TEST(DesktopSettings, PublishedOnesGoBeforeResources) {
    const std::pair<int, double> scales[] = {{96, 1},  {72, 1},   {130, 1.25}, {144, 1.5},
                                             {192, 2}, {2000, 4}, {-1, 2}};
    for (const auto& [dpi, scale] : scales)
        EXPECT_EQ(ScaleOf(Published().Integer("Xft/DPI", dpi * 1024), "Xft.dpi: 192\n"), scale);
    EXPECT_EQ(ScaleOf(Published(), "Xft.dpi: lots\n"), 1);

    auto resources = ReadDesktopSettings({}, "Xcursor.size:\t32\nXft.dpi: 192");
    EXPECT_EQ(resources.scale, 2);
    EXPECT_EQ(resources.PointerSize(), 32);
    EXPECT_EQ(ReadDesktopSettings({}, "Xft.dpi: 192\n").PointerSize(), 48);
    auto published = Published().Integer("Gtk/CursorThemeSize", 64).Bytes();
    EXPECT_EQ(ReadDesktopSettings(published, "Xcursor.size: 32\n").PointerSize(), 64);
}

TEST(DesktopSettings, AreReadInEitherByteOrder) {
    for (bool bigEndian : {false, true}) {
        auto bytes = Published(bigEndian)
                         .Text("Net/ThemeName", "Plain")
                         .Color("Gtk/Color")
                         .Integer("Net/DoubleClickTime", 250)
                         .Integer("Net/DoubleClickDistance", 8)
                         .Integer("Xft/DPI", 192 * 1024)
                         .Bytes();
        DesktopSettings settings = ReadDesktopSettings(bytes, {});
        EXPECT_EQ(settings.doubleClickTime, 250'000);
        EXPECT_EQ(settings.doubleClickDistance, 8);
        EXPECT_EQ(settings.scale, 2);
    }
}

TEST(DesktopSettings, BrokenOnesCountAsFarAsTheyGo) {
    auto whole = Published()
                     .Integer("Net/DoubleClickTime", 250)
                     .Text("Net/ThemeName", "Plain")
                     .Integer("Xft/DPI", 192 * 1024)
                     .Bytes();
    for (std::size_t length = 0; length < whole.size(); length++) {
        std::vector<uint8> part(whole.begin(), whole.begin() + length);
        EXPECT_EQ(ReadDesktopSettings(part, {}).scale, 1) << length;
        for (uint8 value : {0x00, 0x7f, 0x80, 0xff}) {
            std::vector<uint8> changed = whole;
            changed[length] = value;
            double scale = ReadDesktopSettings(changed, {}).scale;
            EXPECT_GE(scale, 1);
            EXPECT_LE(scale, 4);
        }
    }
    EXPECT_EQ(ReadDesktopSettings(whole, {}).scale, 2);
}

TEST(Displays, FollowTheSettingsManagerAsItComesChangesAndGoes) {
    Desk desktop({.windowManager = false});
    TestDisplay display(desktop);
    const auto becomes = [&](double scale, bigtime_t clicks) {
        return WaitUntil(
            [&] { return display->Scale() == scale && display->DoubleClickTime() == clicks; });
    };
    Peer manager(desktop);
    const auto publish = [&](const std::vector<uint8>& bytes) {
        const xcb_atom_t property = desktop.Atom("_XSETTINGS_SETTINGS");
        xcb_change_property(desktop.Connection(), XCB_PROP_MODE_REPLACE, manager.Window(), property,
                            property, 8, bytes.size(), bytes.data());
        desktop.Sync();
    };
    publish(Published().Integer("Net/DoubleClickTime", 250).Bytes());
    manager.Own("_XSETTINGS_S0");
    const auto message = desktop.Message(desktop.Root(), "MANAGER",
                                         {XCB_CURRENT_TIME, desktop.Atom("_XSETTINGS_S0")});
    xcb_send_event(desktop.Connection(), false, desktop.Root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    desktop.Sync();
    EXPECT_TRUE(becomes(1, 250'000));
    publish(Published().Integer("Xft/DPI", 192 * 1024).Bytes());
    EXPECT_TRUE(becomes(2, 400'000));
    EXPECT_EQ(display.Sink().settingsChanges, 2);
    manager.Die();
    EXPECT_TRUE(becomes(1, 400'000));
}

TEST(Displays, TellOnceThatTheyAreLostAndBearCallsAfterThat) {
    Desk desktop({.windowManager = false});
    TestDisplay display(desktop);
    WindowSpec spec = BarSpec({100, 80, 340, 112});
    TestWindow bar = display.CreateShown(spec);
    desktop.KillServer();
    ASSERT_TRUE(WaitUntil([&] { return display.Sink().losses > 0; }));
    Pixels picture(240, 32, Pattern);
    bar->Present(picture.Picture(), {picture.Bounds()});
    bar->SetFrame({1, 2, 30, 40});
    bar->Show();
    bar->Activate();
    bar->SetMinimized(true);
    bar->SetAllDesktops(false);
    EXPECT_NE(bar->GrabInput(10'000'000), B_OK);
    bar->ReleaseInput();
    bar->Hide();
    display->Beep();
    display->Sync();
    EXPECT_EQ(display->GetPointer().buttons, 0u);
    EXPECT_FALSE(display->Monitors().empty());
    TestWindow late = display.Create(spec);
    late->Show();
    EXPECT_EQ(display.Sink().losses, 1);
}

TEST(Displays, SayWhyTheyCannotBeUsed) {
    DisplayLog sink;
    std::string problem;
    EXPECT_EQ(XDisplay::Connect(":54321", &sink, "bar", "Bar", problem), nullptr);
    EXPECT_THAT(problem, testing::HasSubstr("no display server answers"));
    EXPECT_EQ(XDisplay::Connect("nonsense", &sink, "bar", "Bar", problem), nullptr);
    EXPECT_FALSE(problem.empty());

    Desk shallow({.depth = 16, .windowManager = false});
    EXPECT_EQ(XDisplay::Connect(shallow.Name().c_str(), &sink, "bar", "Bar", problem), nullptr);
    EXPECT_THAT(problem, testing::HasSubstr("16 bits a pixel"));
}

} // namespace
} // namespace host

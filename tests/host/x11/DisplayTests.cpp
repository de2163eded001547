#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

using Bytes = std::vector<uint8>;

// Settings of numbers as a settings manager publishes them, behind a text and a colour.
Bytes Published(const std::map<std::string, int32>& numbers, bool bigEndian = false) {
    Bytes bytes = {bigEndian, 0, 0, 0};
    const auto addNumber = [&](uint32 value, int size = 4) {
        for (int i = 0; i < size; i++)
            bytes.push_back(static_cast<uint8>(value >> 8 * (bigEndian ? size - 1 - i : i)));
    };
    const auto begin = [&](uint8 type, std::string_view name) {
        bytes.insert(bytes.end(), {type, 0});
        addNumber(static_cast<uint32>(name.size()), 2);
        bytes.insert(bytes.end(), name.begin(), name.end());
        bytes.resize((bytes.size() + 3) / 4 * 4);
        addNumber(7); // the serial number of its last change
    };
    addNumber(1);
    addNumber(static_cast<uint32>(numbers.size() + 2));
    begin(1, "Net/ThemeName");
    addNumber(5);
    bytes.resize(bytes.size() + 8); // the text with its padding
    begin(2, "Gtk/Color");
    bytes.resize(bytes.size() + 8);
    for (const auto& [name, value] : numbers) {
        begin(0, name);
        addNumber(static_cast<uint32>(value));
    }
    return bytes;
}

TEST(DesktopSettings, PublishedOnesGoBeforeResources) {
    const std::pair<int, double> scales[] = {{96, 1},  {72, 1},   {130, 1.25}, {144, 1.5},
                                             {192, 2}, {2000, 4}, {-1, 2}};
    for (const auto& [dpi, scale] : scales)
        EXPECT_EQ(ReadDesktopSettings(Published({{"Xft/DPI", dpi * 1024}}), "Xft.dpi: 192\n").scale,
                  scale);
    const Bytes published = Published({{"Gtk/CursorThemeSize", 64}});
    EXPECT_EQ(ReadDesktopSettings(published, "Xcursor.size:\t32").PointerSize(), 64);
    EXPECT_EQ(ReadDesktopSettings({}, "Xcursor.size:\t32\nXft.dpi: lots").PointerSize(), 32);
}

TEST(DesktopSettings, AreReadInEitherByteOrderAsFarAsTheyGo) {
    const std::map<std::string, int32> numbers = {
        {"Net/DoubleClickDistance", 8}, {"Net/DoubleClickTime", 250}, {"Xft/DPI", 192 * 1024}};
    for (bool bigEndian : {false, true}) {
        const Bytes whole = Published(numbers, bigEndian);
        const DesktopSettings settings = ReadDesktopSettings(whole, {});
        EXPECT_EQ(settings.doubleClickTime, 250'000);
        EXPECT_EQ(settings.doubleClickDistance, 8);
        EXPECT_EQ(settings.scale, 2);
        for (std::size_t i = 0; i < whole.size(); i++) {
            EXPECT_EQ(ReadDesktopSettings({whole.data(), i}, {}).scale, 1) << i;
            for (uint8 value : {0x00, 0x7f, 0x80, 0xff}) {
                Bytes changed = whole;
                changed[i] = value;
                const double scale = ReadDesktopSettings(changed, {}).scale;
                EXPECT_TRUE(scale >= 1 && scale <= 4) << scale;
            }
        }
    }
}

TEST(DisplayTest, FollowsTheSettingsManagerAsItComesChangesAndGoes) {
    Desk desk({.windowManager = false});
    TestDisplay display(desk);
    auto manager = std::make_unique<Peer>(desk);
    const auto publish = [&](const Bytes& bytes) {
        const xcb_atom_t property = desk.Atom("_XSETTINGS_SETTINGS");
        xcb_change_property(desk.Connection(), XCB_PROP_MODE_REPLACE, manager->Window(), property,
                            property, 8, static_cast<uint32>(bytes.size()), bytes.data());
        desk.Sync();
    };
    publish(Published({{"Net/DoubleClickTime", 250}}));
    manager->Own("_XSETTINGS_S0");
    manager->Send(desk.Root(), desk.Root(), "MANAGER",
                  {XCB_CURRENT_TIME, desk.Atom("_XSETTINGS_S0")}, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    EXPECT_TRUE(WaitUntil([&] { return display->DoubleClickTime() == 250'000; }));
    publish(Published({{"Xft/DPI", 192 * 1024}}));
    EXPECT_TRUE(WaitUntil([&] { return display->Scale() == 2; }));
    EXPECT_EQ(display->DoubleClickTime(), 400'000);
    manager.reset();
    EXPECT_TRUE(WaitUntil([&] { return display->Scale() == 1; }));
}

} // namespace
} // namespace host

// The hot key, typed while another program has the focus.

#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

using Keys = std::vector<uint32_t>;

constexpr char kStart[] = "http://start.example/";
constexpr char kThree[] = "http://three.example/";
constexpr char kFive[] = "http://five.example/";
constexpr char kNine[] = "http://nine.example/";
constexpr char kProbe[] = "http://probe.example/";

class HotKeyTest : public DesktopTest {
protected:
    ~HotKeyTest() override { SetLayout("us"); }

    void Start(const Keys& hotKey = {XK_Super_L}) {
        AddBookmark(7, "7 - Start", kStart);
        AddBookmark(3, "3 - Three", kThree);
        AddBookmark(3, "5 - Five", kFive);
        AddBookmark(0, "9 - Nine", kNine);
        AddBookmark(8, "8 - Probe", kProbe);
        fHotKey = hotKey;
        fProgram.Start();
        fOther.Activate();
        // The bar asks for keys only when it has been painted.
        const size_t before = fApps.Launches().size();
        ASSERT_TRUE(WaitUntil([&] {
            TypeAfterHotKey({XK_KP_7, XK_KP_7});
            return WaitUntil([&] { return fApps.Launches().size() > before; },
                             std::chrono::milliseconds(300));
        }));
    }
    void Type(const Keys& keys) {
        for (const uint32_t key : keys)
            fDesk.Key(key);
    }
    void TypeAfter(const Keys& held, const Keys& keys) {
        for (const uint32_t key : held)
            fDesk.KeyDown(key);
        fDesk.LetGo();
        Type(keys);
    }
    void TypeAfterHotKey(const Keys& keys) { TypeAfter(fHotKey, keys); }
    // Whether this was launched since the last call, and nothing else.
    bool IsLaunched(const std::string& url) {
        fExpected.push_back({"browser", {url}});
        std::vector<RecordedApps::Launch> launches;
        WaitUntil([&] {
            launches = fApps.Launches();
            std::erase(launches, RecordedApps::Launch{"browser", {kStart}});
            return launches.size() >= fExpected.size();
        });
        return launches == fExpected;
    }
    // What was typed before has been handled when what is typed now launches its bookmark.
    bool NothingIsLaunched() {
        TypeAfterHotKey({XK_KP_8, XK_KP_8});
        return IsLaunched(kProbe);
    }

    static void SetLayout(const std::string& layout) {
        EXPECT_EQ(ChildProcess({.arguments = {"setxkbmap", "-layout", layout}}).Wait(), 0);
    }

    Keys fHotKey;
    PlainWindow fOther{fDesk, {500, 500, 200, 100}};
    std::vector<RecordedApps::Launch> fExpected;
};

TEST_F(HotKeyTest, TheWindowsKeyAndTwoKeypadDigitsLaunch) {
    Start();
    TypeAfterHotKey({XK_KP_3, XK_KP_5});
    EXPECT_TRUE(IsLaunched(kFive));
    EXPECT_EQ(fDesk.ActiveWindow(), fOther.Id());

    fDesk.KeyDown(XK_Super_R);
    Type({XK_KP_0, XK_KP_9});
    fDesk.KeyUp(XK_Super_R);
    EXPECT_TRUE(IsLaunched(kNine)) << "held";

    for (const uint32_t lock : {XK_Num_Lock, XK_Caps_Lock}) {
        fDesk.Key(lock);
        TypeAfterHotKey({XK_KP_3, XK_KP_5});
        EXPECT_TRUE(IsLaunched(kFive));
        fDesk.Key(lock);
    }
    for (const char* layout : {"fr", "ru", "us(dvorak)"}) {
        SetLayout(layout);
        TypeAfterHotKey({XK_KP_3, XK_KP_5});
        EXPECT_TRUE(IsLaunched(kFive)) << layout;
    }
    SetLayout("us");

    TypeAfterHotKey({XK_3, XK_KP_3, XK_KP_5});
    Type({XK_KP_3, XK_KP_5});
    EXPECT_TRUE(NothingIsLaunched()) << "of the other row, or without the hot key";

    TypeAfterHotKey({XK_KP_3});
    TypeAfterHotKey({XK_KP_5});
    EXPECT_TRUE(IsLaunched(kFive)) << "the folder's digit stays";
    TypeAfterHotKey({});
    TypeAfter({XK_KP_3, XK_KP_5}, {});
    EXPECT_TRUE(IsLaunched(kThree)) << "of several digits the lowest";
}

TEST_F(HotKeyTest, OtherKeysMayBeItAndSeveralAreHeldTogether) {
    const struct {
        int32 setting;
        std::vector<Keys> right, wrong;
    } cases[] = {
        {1, {{XK_Alt_L}, {XK_Alt_R}}, {}},
        {2, {{XK_Shift_L}, {XK_Shift_R}}, {}},
        {4, {{XK_Control_L}, {XK_Control_R}}, {}},
        {16, {{XK_Menu}}, {}},
        {32, {{XK_KP_Delete}}, {{XK_Super_L}}},
        {1 + 4, {{XK_Alt_L, XK_Control_L}, {XK_Control_R, XK_Super_L, XK_Alt_R}}, {{XK_Alt_L}}},
        {8 + 32,
         {{XK_Super_L, XK_KP_Delete}},
         {{XK_Super_L}, {XK_KP_Delete}, {XK_Super_L, XK_a, XK_KP_Delete}}},
    };
    for (const auto& [setting, right, wrong] : cases) {
        BMessage settings;
        settings.AddInt32("hotkey", setting);
        fProgram.WriteSettings(settings);
        Start(right[0]);
        for (const Keys& held : right) {
            TypeAfter(held, {XK_KP_3, XK_KP_5});
            EXPECT_TRUE(IsLaunched(kFive)) << setting;
        }
        for (const Keys& held : wrong)
            TypeAfter(held, {XK_KP_3, XK_KP_5});
        EXPECT_TRUE(NothingIsLaunched()) << setting;
        EXPECT_EQ(fProgram.Stop(), 0);
    }
}

TEST_F(HotKeyTest, TheActiveBarHandlesDigitsItself) {
    Start();
    ActivateBar();
    TypeAfterHotKey({XK_KP_3});
    ASSERT_TRUE(MenusBecome(1));
    fDesk.Settled(fProgram.Menus()[0].frame);
    fDesk.Key(XK_KP_5);
    EXPECT_TRUE(MenusBecome(0));
    EXPECT_TRUE(IsLaunched(kFive)) << "once, by the menu";
    fOther.Activate();

    // Keypad 5 without Num Lock opens a menu in the bar, and nowhere else.
    fDesk.Key(XK_KP_5);
    EXPECT_TRUE(NothingIsLaunched());
    EXPECT_TRUE(fProgram.Menus().empty());

    fDesk.KeyDown(XK_Shift_L);
    fDesk.KeyDown(XK_Control_R);
    EXPECT_EQ(fDesk.ActiveWindow(), fOther.Id());
    fDesk.KeyDown(XK_Alt_L);
    EXPECT_TRUE(WaitUntil([&] { return fDesk.HasKeyboard(fProgram.Bar().id); }));
    fDesk.LetGo();
}

TEST_F(HotKeyTest, OnlyKeysOfAnAlertItselfAreKeptFromIt) {
    Start();
    ActivateBar();
    ChooseSetting(setting::kHotKey, setting::kWindowsKey);
    ASSERT_TRUE(AlertOpens()) << "about the last key of the hot key";
    fOther.Activate();
    TypeAfterHotKey({XK_KP_3, XK_KP_5});
    EXPECT_TRUE(IsLaunched(kFive));

    const xcb_window_t alert = fProgram.Alerts()[0].id;
    Activate(alert);
    TypeAfterHotKey({XK_KP_3, XK_KP_5});
    fOther.Activate();
    EXPECT_TRUE(NothingIsLaunched());
    DismissAlert();
}

} // namespace

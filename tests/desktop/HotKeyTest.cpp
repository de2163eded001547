// The hot key, typed while another program has the focus.

#include <gmock/gmock.h>

#include "tests/desktop/DesktopTest.h"

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Keys = std::vector<uint32_t>;
using Urls = std::vector<std::string>;

constexpr char kFive[] = "http://five.example/";
constexpr char kNine[] = "http://nine.example/";
constexpr char kProbe[] = "http://probe.example/";

class HotKeyTest : public DesktopTest {
protected:
    ~HotKeyTest() override { SetLayout("us"); }

    void Start(int32 bits, const Keys& hotKey) {
        fHotKey = hotKey;
        AddBookmark(3, "5 - Five", kFive);
        AddBookmark(0, "9 - Nine", kNine);
        AddBookmark(8, "8 - Probe", kProbe);
        BMessage settings;
        settings.AddInt32("hotkey", bits);
        fProgram.WriteSettings(settings);
        fProgram.Start();
        fOther.Activate();
        // The bar asks for keys only when it has been painted.
        ASSERT_TRUE(WaitUntil([&] { return Probe(std::chrono::milliseconds(300)); }));
    }
    void Type(const Keys& keys) {
        for (const uint32_t key : keys)
            fDesk.Key(key);
    }
    void TypeAfterHotKey(const Keys& keys) {
        Type(fHotKey);
        Type(keys);
    }

    Urls Launched(bool probes = false) const {
        Urls urls;
        for (const auto& launch : fApps.Launches()) {
            const std::string url = launch.arguments.empty() ? "nothing" : launch.arguments[0];
            if ((url == kProbe) == probes)
                urls.push_back(url);
        }
        return urls;
    }
    // Launches a bookmark that no test asks for: what was typed before has been handled then.
    bool Probe(std::chrono::milliseconds deadline = kDeadline) {
        const size_t before = Launched(true).size();
        TypeAfterHotKey({XK_KP_8, XK_KP_8});
        return WaitUntil([&] { return Launched(true).size() > before; }, deadline);
    }
    // What was launched since the last call, one bookmark at least.
    Urls NextLaunches() {
        WaitUntil([&] { return Launched().size() > fKnown; });
        EXPECT_TRUE(Probe());
        const Urls all = Launched();
        const Urls next(all.begin() + static_cast<ptrdiff_t>(fKnown), all.end());
        fKnown = all.size();
        return next;
    }
    bool NothingIsLaunched() { return Probe() && Launched().size() == fKnown; }

    static void SetLayout(const std::string& layout) {
        EXPECT_EQ(ChildProcess({.arguments = {"setxkbmap", "-layout", layout}}).Wait(), 0);
    }

    PlainWindow fOther{fDesk, {500, 500, 200, 100}};
    Keys fHotKey;
    size_t fKnown = 0;
};

TEST_F(HotKeyTest, TheWindowsKeyAndTwoKeypadDigitsLaunch) {
    Start(8, {XK_Super_L});
    TypeAfterHotKey({XK_KP_3, XK_KP_5});
    EXPECT_THAT(NextLaunches(), ElementsAre(kFive));
    EXPECT_EQ(fDesk.ActiveWindow(), fOther.Id());

    fDesk.KeyDown(XK_Super_R);
    Type({XK_KP_0, XK_KP_9});
    fDesk.KeyUp(XK_Super_R);
    EXPECT_THAT(NextLaunches(), ElementsAre(kNine)) << "held";

    for (const uint32_t lock : {XK_Num_Lock, XK_Caps_Lock}) {
        fDesk.Key(lock);
        TypeAfterHotKey({XK_KP_3, XK_KP_5});
        EXPECT_THAT(NextLaunches(), ElementsAre(kFive));
        fDesk.Key(lock);
    }
    for (const char* layout : {"fr", "ru", "us(dvorak)"}) {
        SetLayout(layout);
        TypeAfterHotKey({XK_KP_3, XK_KP_5});
        EXPECT_THAT(NextLaunches(), ElementsAre(kFive)) << layout;
    }
    SetLayout("us");

    TypeAfterHotKey({XK_3, XK_KP_3, XK_KP_5});
    EXPECT_TRUE(NothingIsLaunched()) << "of the other row";
    Type({XK_KP_3, XK_KP_5});
    EXPECT_TRUE(NothingIsLaunched()) << "without the hot key";
}

TEST_F(HotKeyTest, TheActiveBarHandlesDigitsItself) {
    Start(8, {XK_Super_L});
    ActivateBar();
    TypeAfterHotKey({XK_KP_3});
    ASSERT_TRUE(MenusBecome(1));
    fDesk.Settled(fProgram.Menus()[0].frame);
    fDesk.Key(XK_KP_5);
    EXPECT_TRUE(MenusBecome(0));
    EXPECT_TRUE(WaitUntil([&] { return Launched().size() == 1; }));
    fOther.Activate();
    EXPECT_THAT(NextLaunches(), ElementsAre(kFive)) << "once, by the menu";

    // Keypad 5 without Num Lock opens a menu in the bar, and nowhere else.
    fDesk.Key(XK_KP_5);
    EXPECT_TRUE(NothingIsLaunched());
    EXPECT_THAT(fProgram.Menus(), IsEmpty());

    fDesk.KeyDown(XK_Shift_L);
    fDesk.KeyDown(XK_Control_R);
    EXPECT_EQ(fDesk.ActiveWindow(), fOther.Id());
    fDesk.KeyDown(XK_Alt_L);
    EXPECT_TRUE(WaitUntil([&] { return fDesk.HasKeyboard(fProgram.Bar().id); }));
    for (const uint32_t key : {XK_Alt_L, XK_Control_R, XK_Shift_L})
        fDesk.KeyUp(key);
    fDesk.Key(XK_KP_3);
    EXPECT_TRUE(MenusBecome(1));
    CloseMenus();
}

TEST_F(HotKeyTest, OnlyKeysOfAnAlertItselfAreKeptFromIt) {
    Start(8, {XK_Super_L});
    ActivateBar();
    ChooseSetting(setting::kHotKey, setting::kWindowsKey);
    ASSERT_TRUE(AlertOpens()) << "about the last key of the hot key";
    fOther.Activate();
    TypeAfterHotKey({XK_KP_3, XK_KP_5});
    EXPECT_THAT(NextLaunches(), ElementsAre(kFive));

    const xcb_window_t alert = fProgram.Alerts()[0].id;
    fDesk.Activate(alert);
    ASSERT_TRUE(WaitUntil([&] { return fDesk.HasKeyboard(alert); }));
    TypeAfterHotKey({XK_KP_3, XK_KP_5});
    fOther.Activate();
    EXPECT_TRUE(NothingIsLaunched());
    DismissAlert();
}

} // namespace

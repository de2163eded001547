#include <map>
#include <sstream>

#include <gmock/gmock.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Settings.h"
#include "quillbar/hotkey/Tracker.h"
#include "tests/support/Wait.h"

namespace {

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

const std::map<std::string, int32> kKeys = {
    {"alt", 0x5d},    {"ralt", 0x5f}, {"shift", 0x4b}, {"rshift", 0x56}, {"control", 0x5c},
    {"rctl", 0x60},   {"win", 0x66},  {"rwin", 0x67},  {"menu", 0x68},   {"caps", 0x3b},
    {"delete", 0x65}, {"a", 0x3c},    {"row3", 0x14},  {"0", 0x64},      {"1", 0x58},
    {"2", 0x59},      {"3", 0x5a},    {"4", 0x48},     {"5", 0x49},      {"6", 0x4a},
    {"7", 0x37},      {"8", 0x38},    {"9", 0x39}};

bool IsModifier(const std::string& key) {
    static const Strings names = {"alt",  "ralt", "shift", "rshift", "control",
                                  "rctl", "win",  "rwin",  "menu"};
    return std::find(names.begin(), names.end(), key) != names.end();
}

// Keeps what it is told to launch, and counts keys that go up.
class BarWindow : public BWindow {
public:
    BarWindow()
        : BWindow(BRect(0, 0, 9, 9), "bar", B_BORDERED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL, 0) {}
    void MessageReceived(BMessage* message) override {
        if (message->what == kQBLaunch) {
            launches.push_back(std::to_string(message->GetInt8("folder", 0)) + " " +
                               std::to_string(message->GetInt8("slot", 0)));
        } else if (message->what == B_KEY_UP) {
            keyUps++;
        } else if (message->what == 'done') {
            isDone = true;
        } else {
            others++;
        }
    }

    Strings launches;
    int keyUps = 0;
    int others = 0;
    std::atomic<bool> isDone = false;
};

// The tracker in a window on no display, which is told what keys there are.
class TrackerTest : public testing::Test {
protected:
    TrackerTest() {
        gSettings = new QBSettings(BPath("/nowhere"));
        fWindow->AddChild(fTracker);
        fWindow->Show();
    }
    ~TrackerTest() override {
        fWindow->Lock();
        fWindow->Quit();
        delete gSettings;
        gSettings = nullptr;
    }

    // Words: "+key" is pressed, "-key" released, "key" both; answers what is to be launched.
    Strings Typed(int32 hotKey, const std::string& words) {
        gSettings->SetHotKey(hotKey);
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            const bool isOne = word[0] == '+' || word[0] == '-';
            const std::string key = isOne ? word.substr(1) : word;
            if (word[0] != '-')
                Send(key, true);
            if (word[0] != '+')
                Send(key, false);
        }
        Settle();
        return std::exchange(fWindow->launches, {});
    }

    void Send(const std::string& key, bool down) {
        const int32 code = kKeys.at(key);
        const uint8 bit = 0x80 >> code % 8;
        fStates[code / 8] = down ? fStates[code / 8] | bit : fStates[code / 8] & ~bit;
        const bool isMapped = !IsModifier(key) && key != "caps";
        if (IsModifier(key))
            Send(B_MODIFIERS_CHANGED);
        Send(isMapped ? (down ? B_KEY_DOWN : B_KEY_UP)
                      : (down ? B_UNMAPPED_KEY_DOWN : B_UNMAPPED_KEY_UP));
    }
    void Send(uint32 what) {
        BMessage message(what);
        message.AddData("states", B_UINT8_TYPE, fStates, sizeof fStates);
        fWindow->PostMessage(&message, fTracker);
    }
    void SetActive(bool active) {
        BMessage message(B_WINDOW_ACTIVATED);
        message.AddBool("active", active);
        fWindow->PostMessage(&message);
    }
    // What the tracker posts is handled in the second round.
    void Settle() {
        for (int round = 0; round < 2; ++round) {
            fWindow->isDone = false;
            fWindow->PostMessage('done');
            ASSERT_TRUE(test::WaitUntil([&] { return fWindow->isDone.load(); }));
        }
    }

    BarWindow* const fWindow = new BarWindow;
    QBTracker* const fTracker = new QBTracker;
    uint8 fStates[16] = {};
};

TEST_F(TrackerTest, EachKeyOfTheHotKeyAndEachDigitCounts) {
    const std::pair<int32, const char*> hotKeys[] = {
        {1, "alt"},  {1, "ralt"}, {2, "shift"}, {2, "rshift"}, {4, "control"},
        {4, "rctl"}, {8, "win"},  {8, "rwin"},  {16, "menu"},  {32, "delete"}};
    for (const auto& [bit, key] : hotKeys)
        EXPECT_THAT(Typed(bit, std::string(key) + " 3 5"), ElementsAre("4 6")) << key;
    for (int digit = 0; digit < 10; ++digit) {
        const std::string number = std::to_string(digit + 1);
        EXPECT_THAT(Typed(8, "win " + std::to_string(digit) + " " + std::to_string(digit)),
                    ElementsAre(number + " " + number));
    }
}

TEST_F(TrackerTest, TakesTheSequenceAndNothingElse) {
    const struct {
        int32 hotKey;
        const char* keys;
        Strings launched;
    } cases[] = {
        {0x05, "alt 1 2", {}},
        {0x05, "alt control 1 2", {}},
        {0x05, "+alt +win +control -win -alt -control 1 2", {"2 3"}},
        {0x1f, "+alt +shift +control +win +menu 1 2 -alt -shift -control -win -menu", {"2 3"}},
        {0x28, "win delete 1 2", {"2 3"}},
        {0x28, "+win delete -win 1 2", {"2 3"}},
        {0x28, "win 1 2 3", {}},
        {0x28, "win a delete 1 2", {}},
        {0x28, "delete 1 2", {}},
        {0x20, "delete a delete 0 9", {"1 10"}},
        {0x20, "win 1 2", {}},
        {0x08, "1 2 3 5", {}},
        {0x08, "win a 1 2", {}},
        {0x08, "win 1 a 2 3", {}},
        {0x08, "win row3 1 2", {}},
        {0x08, "win 1 row3 2 3", {}},
        {0x08, "win 3 5 6 7", {"4 6"}},
        {0x08, "win caps 3 caps 5", {"4 6"}},
        // The folder's digit stays when the hot key comes again.
        {0x08, "win 4 win 7", {"5 8"}},
        {0x28, "win delete 4 win a win delete 7", {"5 8"}},
        // Of several digits the lowest.
        {0x08, "win +7 +2 -2 -7", {"8 3"}},
        {0x08, "win +2 +7 -7 -2", {"3 3"}},
        {0, "win delete 1 2", {}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Typed(one.hotKey, one.keys), one.launched) << one.hotKey << ": " << one.keys;
        // Whatever is under way ends with a key that is no digit.
        Typed(0x08, "win a");
    }
}

TEST_F(TrackerTest, MessagesWithoutKeysCountForNothing) {
    Typed(0x08, "win");
    fWindow->PostMessage(B_KEY_DOWN, fTracker);
    fWindow->PostMessage(B_MODIFIERS_CHANGED, fTracker);
    EXPECT_THAT(Typed(0x08, "3 5"), ElementsAre("4 6"));
}

TEST_F(TrackerTest, AnActiveWindowIsLeftAlone) {
    SetActive(true);
    EXPECT_THAT(Typed(0x08, "win 3 5"), IsEmpty());
    EXPECT_EQ(fWindow->keyUps, 0);
    SetActive(false);
    EXPECT_THAT(Typed(0x08, "6 7"), IsEmpty()) << "the sequence has ended";
    EXPECT_EQ(fWindow->keyUps, 2);
    EXPECT_THAT(Typed(0x08, "win 3 5"), ElementsAre("4 6"));
    EXPECT_EQ(fWindow->others, 0) << "no key goes on to the window";
}

} // namespace

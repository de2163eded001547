// The hot key's sequences, in a window on no display.

#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Settings.h"
#include "quillbar/hotkey/Tracker.h"
#include "tests/support/Wait.h"

namespace {

using Strings = std::vector<std::string>;

const std::map<std::string, int32> kModifiers = {
    {"alt", 0x5d},  {"ralt", 0x5f}, {"shift", 0x4b}, {"rshift", 0x56}, {"control", 0x5c},
    {"rctl", 0x60}, {"win", 0x66},  {"rwin", 0x67},  {"menu", 0x68}};
const std::map<std::string, int32> kKeys = {
    {"delete", 0x65}, {"a", 0x3c}, {"row3", 0x14}, {"0", 0x64}, {"1", 0x58},
    {"2", 0x59},      {"3", 0x5a}, {"4", 0x48},    {"5", 0x49}, {"6", 0x4a},
    {"7", 0x37},      {"8", 0x38}, {"9", 0x39}};

class BarWindow : public BWindow {
public:
    BarWindow()
        : BWindow(BRect(0, 0, 9, 9), "bar", B_BORDERED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL, 0) {}
    void MessageReceived(BMessage* message) override {
        if (message->what == kQBLaunch)
            launches.push_back(std::to_string(message->GetInt8("folder", 0)) + " " +
                               std::to_string(message->GetInt8("slot", 0)));
        else if (message->what == 'done')
            isDone = true;
    }

    Strings launches;
    std::atomic<bool> isDone = false;
};

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

    // Words: "+key" is pressed, "-key" released, "key" both. Returns what is to be launched.
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
        const bool isModifier = kModifiers.contains(key);
        const int32 code = (isModifier ? kModifiers : kKeys).at(key);
        fStates[code / 8] ^= 0x80 >> code % 8;
        BMessage message(isModifier ? B_MODIFIERS_CHANGED : down ? B_KEY_DOWN : B_KEY_UP);
        message.AddData("states", B_UINT8_TYPE, fStates, sizeof fStates);
        fWindow->PostMessage(&message, fTracker);
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

TEST_F(TrackerTest, TakesTheSequenceAndNothingElse) {
    const struct {
        int32 hotKey;
        const char* keys;
        Strings launched;
    } cases[] = {
        {1, "alt 3 5 ralt 0 1", {"4 6", "1 2"}},
        {2, "shift 3 5 rshift 2 4", {"4 6", "3 5"}},
        {4, "control 3 5 rctl 6 8", {"4 6", "7 9"}},
        {8, "win 3 5 rwin 7 9", {"4 6", "8 10"}},
        {16, "menu 3 5 6 7", {"4 6"}},
        {32, "delete a delete 3 5", {"4 6"}},
        {0x05, "alt 1 2 alt control 1 2", {}},
        {0x05, "+alt +win +control -win -alt -control 1 2", {"2 3"}},
        {0x28, "+win delete -win 1 2 win 1 2 3 delete 1 2", {"2 3"}},
        {0x28, "win a delete 1 2", {}},
        {0x20, "win 1 2", {}},
        {0x08, "1 2 win a 1 2", {}},
        {0x08, "win 1 row3 2 3", {}},
        // The folder's digit stays when the hot key comes again.
        {0x08, "win 4 win 7", {"5 8"}},
        // Of several digits the lowest.
        {0x08, "win +7 +2 -2 -7", {"8 3"}},
        {0, "win delete 1 2", {}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Typed(one.hotKey, one.keys), one.launched) << one.hotKey << ": " << one.keys;
        // Ends a sequence that has begun.
        Typed(0x08, "win a");
    }
}

} // namespace

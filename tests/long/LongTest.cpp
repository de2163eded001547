// What only many tries or much time show. TEST_SCALE makes all numbers and times smaller.

#include <csignal>
#include <fstream>
#include <random>
#include <thread>

#include "tests/desktop/DesktopTest.h"

using namespace test;
namespace fs = std::filesystem;

namespace {

int Scaled(int full) {
    const char* scale = getenv("TEST_SCALE");
    return std::max(1, static_cast<int>(full * (scale != nullptr ? std::stod(scale) : 1)));
}

class LongTest : public DesktopTest {
protected:
    // A value of the settings that only a whole file brings back.
    static constexpr int32 kHotKey = 33;

    void SetUp() override {
        DesktopTest::SetUp();
        BMessage settings;
        settings.AddInt32("hotkey", kHotKey);
        fProgram.WriteSettings(settings);
        for (int slot = 1; slot <= 9; ++slot)
            AddBookmark(2, std::to_string(slot) + " - Site", "http://site.example/");
    }
    int Random(int below) { return std::uniform_int_distribution(0, below - 1)(fRandom); }
    void Rest(int milliseconds) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }

    std::mt19937 fRandom{std::random_device{}()};
};

TEST_F(LongTest, SigtermAtAnyMomentEndsItWithWholeSettings) {
    for (int round = 0; round < Scaled(200); ++round) {
        fProgram.Launch();
        const bool isUp = round % 2 == 0 && fProgram.WaitForBar();
        if (isUp)
            Click(fProgram.Button(2));
        Rest(Random(isUp ? 30 : 150));
        const int status = fProgram.Stop();
        // Before it listens to signals it ends as any program does.
        EXPECT_TRUE(status == 0 || (!isUp && status == 128 + SIGTERM)) << status;
        EXPECT_EQ(fProgram.Settings().GetInt32("hotkey", -1), kHotKey) << "round " << round;
    }
}

TEST_F(LongTest, OfFiftyStartsAtOnceOneStays) {
    for (int round = 0; round < Scaled(10); ++round) {
        std::vector<std::unique_ptr<ChildProcess>> all;
        for (int i = 0; i < 50; ++i)
            all.push_back(std::make_unique<ChildProcess>(
                ChildProcess::Options{.arguments = {Program::Path()}, .errors = "/dev/null"}));
        const auto running = [&] {
            return std::count_if(all.begin(), all.end(),
                                 [](auto& one) { return one->IsRunning(); });
        };
        EXPECT_TRUE(WaitUntil([&] { return running() == 1; }, std::chrono::seconds(60)));
        Rest(500);
        EXPECT_EQ(running(), 1);
        EXPECT_EQ(fDesk.Shown("NORMAL").size(), 1u);
        for (auto& one : all) {
            one->Signal(SIGTERM);
            EXPECT_EQ(one->Wait(), 0);
        }
    }
}

// Each call of a save fails, or is the last one: what was saved before is never lost.
class FaultTest : public LongTest, public testing::WithParamInterface<bool> {
protected:
    bool Kills() const { return GetParam(); }
    fs::path Log() const { return fHome.Path() / "faults"; }

    void Arm() const { std::ofstream(Log()).flush(); }

    // Meets a fault at each call to such a path in what `save` arms and does. What it leaves has to
    // be `whole`. Every round starts with the bookmark alone.
    void MeetFaults(const std::string& path, const std::function<void()>& save,
                    const std::function<bool()>& whole) {
        int call = 1;
        for (bool came = true; came && call < 100; ++call) {
            fs::remove_all(BookmarkPath(2, "").parent_path());
            AddBookmark(2, "4 - Old", "http://old.example/");
            fs::remove(Log());
            std::map<std::string, std::string> variables = {{"LD_PRELOAD", FAULTY_CALLS},
                                                            {"FAULT_PATH", path},
                                                            {"FAULT_LOG", Log()},
                                                            {"FAULT_AT", std::to_string(call)}};
            if (Kills())
                variables["FAULT_KILLS"] = "1";
            fProgram.Start(variables);
            save();
            const int status = fProgram.Stop();
            came = fs::file_size(Log()) >= static_cast<size_t>(call);
            EXPECT_EQ(status, Kills() && came ? 128 + SIGKILL : 0) << "call " << call;
            EXPECT_TRUE(whole()) << "call " << call;
        }
        std::cout << call - 2 << " calls were seen\n";
        EXPECT_GT(call, 5);
    }
};

TEST_P(FaultTest, SettingsAreTheOldOrTheNewOnes) {
    const auto save = [&] {
        ActivateBar();
        ChooseSetting(setting::kAlwaysOnTop);
        Arm();
    };
    MeetFaults("Quillbar.settings", save,
               [&] { return fProgram.Settings().GetInt32("hotkey", -1) == kHotKey; });
}

TEST_P(FaultTest, ABookmarkIsTheOldOrTheNewOne) {
    const auto urlOf = [&](const std::string& name) {
        return GetAttribute(BookmarkPath(2, name), "META:url").value_or("").c_str() + std::string();
    };
    const auto save = [&] {
        ChooseLocation(OpenAddWindow(), 2, 4);
        Arm();
        fDesk.Key(XK_End);
        fDesk.Type("er");
        fDesk.Key(XK_Return);
        EXPECT_TRUE(WaitUntil([&] {
            return !fProgram.IsRunning() || !fProgram.Alerts().empty() ||
                   (fProgram.AddWindows().empty() && urlOf("4 - Older") != "");
        }));
        if (fProgram.IsRunning() && !fProgram.Alerts().empty())
            DismissAlert();
    };
    MeetFaults(" - Folder/", save, [&] {
        // Nothing of it is in the way of the next start.
        fProgram.Start();
        EXPECT_EQ(fProgram.Stop(), 0);
        return urlOf("4 - Old") == "http://old.example/" ||
               urlOf("4 - Older") == "http://old.example/";
    });
}

INSTANTIATE_TEST_SUITE_P(Error, FaultTest, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(Kill, FaultTest, testing::Values(true));

// Memory of its own in kB, descriptors and watches of a process.
struct Held {
    long memory = 0, descriptors = 0, watches = 0;
};

Held HeldBy(pid_t pid) {
    Held held;
    const fs::path process = "/proc/" + std::to_string(pid);
    std::ifstream maps(process / "smaps_rollup");
    for (std::string word; maps >> word;)
        if (word == "Private_Dirty:")
            maps >> held.memory;
    for (const auto& entry : fs::directory_iterator(process / "fdinfo")) {
        held.descriptors++;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);)
            held.watches += line.starts_with("inotify ");
    }
    return held;
}

TEST_F(LongTest, AnHourOfChangesLeavesNothingBehind) {
    fProgram.Start();
    const auto change = [&](int i) {
        const fs::path one = BookmarkPath(2, "1 - Site"), other = BookmarkPath(5, "3 - Moved");
        switch (i % 4) {
        case 0:
            SetUrl(one, "http://site.example/" + std::to_string(i));
            break;
        case 1:
            fs::create_directories(other.parent_path());
            fs::rename(one, other);
            break;
        case 2:
            fs::rename(other, one);
            break;
        default:
            OpenFolder(2);
            CloseMenus();
        }
        Rest(std::max(100, Scaled(1000)));
    };
    // The allocator has all it needs after about a hundred.
    constexpr int kWarm = 160;
    const int tenth = (Scaled(3600) / 10 + 4) / 4 * 4;
    for (int i = 0; i < kWarm; ++i)
        change(i);
    const Held before = HeldBy(fProgram.Pid());
    Held after;
    for (int part = 1; part <= 10; ++part) {
        for (int i = 0; i < tenth; ++i)
            change(i);
        after = HeldBy(fProgram.Pid());
        std::cout << kWarm + part * tenth << " changes: " << after.memory << " kB, "
                  << after.descriptors << " descriptors, " << after.watches << " watches"
                  << std::endl;
    }
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.watches, before.watches);
    EXPECT_LT(after.memory, before.memory + 128);
    ChooseSlot(2, 9);
    EXPECT_EQ(LastUrl(1), "http://site.example/");
}

} // namespace

// Random changes of the tree, seed by seed, in processes side by side: the store's delay of a
// second would make them slow one after the other.

#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <thread>

#include "tests/quillbar/store/Store.h"
#include "tests/support/ChildProcess.h"

namespace {

constexpr int kWorkers = 10; // for each kind of disk
constexpr int kChanges = 80;

class ModelTest : public StoreTest {
protected:
    static int Number(const char* variable, int otherwise) {
        const char* value = getenv(variable);
        return value ? atoi(value) : otherwise;
    }
    // A place in the tree or outside, whether anything is there or not.
    int Any(int bound) { return static_cast<int>(fRandom() % static_cast<unsigned>(bound)); }
    fs::path AnyFolder() {
        if (Any(8) == 0)
            return fHome.Path() / "outside";
        const fs::path known = Folder(Any(10));
        return known.empty() ? Root() / "5 -" : known;
    }
    fs::path AnyFile() {
        return AnyFolder() /
               (std::to_string(Any(10)) + (Any(5) ? " - " : "x") + std::to_string(Any(3)));
    }
    fs::path AnyPlaceOfFolder() {
        return (Any(4) ? Root() : fHome.Path() / "outside") /
               (std::to_string(Any(10)) + (Any(4) ? " - " : " ") + std::to_string(Any(2)));
    }

    static void RunWorkers(int seeds) {
        std::vector<std::unique_ptr<test::ChildProcess>> workers;
        for (const char* disk : {"/tmp", "/dev/shm"}) {
            for (int first = 0; first < kWorkers; ++first)
                workers.push_back(std::make_unique<test::ChildProcess>(test::ChildProcess::Options{
                    .arguments = {"/proc/self/exe", "--gtest_brief=1",
                                  "--gtest_filter=ModelTest.*"},
                    .environment = {{"TMPDIR", disk},
                                    {"MODEL_FIRST_SEED", std::to_string(first)},
                                    {"STORE_SEEDS", std::to_string(seeds)}}}));
        }
        for (auto& worker : workers)
            EXPECT_EQ(worker->Wait(std::chrono::minutes(30)), 0);
    }

    void ChangeSomething() {
        std::error_code ignored;
        const int what = Any(12);
        if (what < 3) {
            if (const fs::path file = AnyFile(); fs::exists(file.parent_path()))
                test::MakeBookmark(file, "http://made");
        } else if (what < 4) {
            fs::remove(AnyFile(), ignored);
        } else if (what < 7) {
            fs::rename(AnyFile(), AnyFile(), ignored);
        } else if (what < 8) {
            renameat2(AT_FDCWD, AnyFile().c_str(), AT_FDCWD, AnyFile().c_str(), RENAME_EXCHANGE);
        } else if (what < 10) {
            if (const fs::path file = AnyFile(); fs::exists(file))
                test::SetUrl(file, "http://changed" + std::to_string(Any(100)));
        } else if (what < 11) {
            fs::rename(AnyFolder(), AnyPlaceOfFolder(), ignored);
        } else if (Any(3) > 0) {
            renameat2(AT_FDCWD, AnyFolder().c_str(), AT_FDCWD, AnyFolder().c_str(),
                      RENAME_EXCHANGE);
        } else {
            fs::remove_all(AnyFolder(), ignored);
        }
        fs::create_directory(fHome.Path() / "outside", ignored);
    }

    void EditEveryBookmark(unsigned seed) {
        const std::string url = "http://edited" + std::to_string(seed);
        for (int digit = 0; digit < 10; ++digit) {
            for (int slot = 0; slot < 10; ++slot) {
                const std::string label = Label(digit, slot);
                if (label == kEmptyLabel)
                    continue;
                test::SetUrl(Root() / Title(digit) / label, url);
                EXPECT_TRUE(UrlBecomes(digit, slot, url)) << "seed " << seed << ": " << label;
            }
        }
    }

    void RunSeed(unsigned seed) {
        fRandom.seed(seed);
        const fs::path synced = fHome.Path() / "synced";
        for (const fs::path& old : {Root(), synced, fHome.Path() / "outside"})
            fs::remove_all(old);
        fs::create_directories(fHome.Path() / "outside");
        fs::create_directories(synced / "marker");
        if (seed % 2 == 0)
            fs::create_directory_symlink(synced, Root());
        else
            fs::rename(synced, Root());
        Start();
        for (int change = 0; change < kChanges; ++change) {
            ChangeSomething();
            if (Any(3) == 0)
                std::this_thread::sleep_for(std::chrono::microseconds(Any(6'000)));
        }
        const int rebuilds = Rebuilds();
        fs::remove(Root() / "marker");
        ASSERT_TRUE(test::WaitUntil([&] { return Rebuilds() > rebuilds; })) << "seed " << seed;
        StoreLooper* const live = fStore;
        const auto equalsFresh = [&] {
            fStore = live;
            const auto shown = Contents();
            Start();
            const auto fresh = Contents();
            Stop();
            fStore = live;
            return shown == fresh;
        };
        EXPECT_TRUE(test::WaitUntil(equalsFresh)) << "seed " << seed;
        EditEveryBookmark(seed);
        Stop();
    }

    std::mt19937 fRandom;
};

TEST_F(ModelTest, MenusEndEqualToTheDiskAndFollowIt) {
    const int first = Number("MODEL_FIRST_SEED", -1);
    const int seeds = Number("STORE_SEEDS", 100);
    if (first < 0)
        return RunWorkers(seeds);
    for (int seed = first; seed < seeds && !HasFailure(); seed += kWorkers)
        RunSeed(static_cast<unsigned>(seed));
}

} // namespace

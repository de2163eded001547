#include "tests/host/files/MonitorFixture.h"

#include <random>
#include <set>

namespace fs = std::filesystem;

namespace test {

class StormTest : public MonitorTest {
protected:
    using Folder = std::map<std::string, int64>;

    StormTest() {
        for (const char* folder : {"a", "b"})
            fBelieved[Know(folder).node] = OnDisk(folder);
    }

    std::string AnyName() {
        static const char* const kFolders[] = {"a/", "b/", "away/"};
        return In(kFolders[fRandom() % 3] + std::to_string(fRandom() % 12));
    }

    // One of the things that happen to files; many fail, as in life.
    void Happen() {
        std::string one = AnyName();
        std::string other = AnyName();
        unsigned what = fRandom() % 7;
        if (what < 2)
            close(creat(one.c_str(), 0600));
        else if (what == 2)
            unlink(one.c_str());
        else if (what == 3)
            mkdir(one.c_str(), 0700);
        else
            renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(),
                      what == 4 ? RENAME_EXCHANGE : 0);
    }

    Folder OnDisk(const std::string& folder) const {
        Folder entries;
        for (const auto& entry : fs::directory_iterator(In(folder))) {
            std::string name = entry.path().filename();
            entries[name] = Know(folder + "/" + name).node;
        }
        return entries;
    }

    // The folder as a listener knows it that follows the changes.
    const Folder& Believed(const std::string& folder) {
        auto changes = fLog->All();
        for (; fFollowed < changes.size(); fFollowed++)
            Follow(changes[fFollowed]);
        return fBelieved[Know(folder).node];
    }

    void Follow(const host::NodeChange& change) {
        bool isMove = change.kind == host::ChangeKind::Moved;
        bool isCreated = change.kind == host::ChangeKind::Created;
        if (isMove || change.kind == host::ChangeKind::Removed) {
            std::erase_if(fBelieved[change.directory], [&](const auto& item) {
                return item.second == change.node.node && (isMove || item.first == change.name);
            });
        }
        if (isMove || isCreated)
            fBelieved[isMove ? change.toDirectory : change.directory][change.name] =
                change.node.node;
    }

    std::mt19937 fRandom;
    std::map<int64, Folder> fBelieved;
    size_t fFollowed = 0;
};

TEST_F(StormTest, ChangesEndWithTheListingOfTheDisk) {
    for (uint32 seed = 0; seed < 60 && !HasFailure(); seed++) {
        fRandom.seed(seed);
        auto happen = [&] {
            for (int i = 1 << fRandom() % 10; i > 0; i--)
                Happen();
        };
        // All read at once, or read while it happens.
        if (seed % 2)
            AtOnce(happen);
        else
            happen();
        for (const char* folder : {"a", "b"})
            EXPECT_TRUE(WaitUntil([&] { return Believed(folder) == OnDisk(folder); }))
                << "seed " << seed << ", folder " << folder << "\nbelieved "
                << testing::PrintToString(Believed(folder)) << "\non disk "
                << testing::PrintToString(OnDisk(folder));
    }
}

TEST_F(StormTest, OverflowIsTheRemovalOfTheTopmostFolders) {
    Do({"mkdir a/inner"});
    Watch("a/inner", kFolder);
    TakeLog(1);
    AtOnce([&] {
        // Changes of one file after the other are not merged by the system.
        for (int i = 0; i < 17'000; i++)
            chmod(In(i % 2 ? "a/one" : "a/two").c_str(), i % 4 < 2 ? 0600 : 0644);
        Do({"touch a/late", "touch a/inner/late"});
    });
    Texts log = TakeLog(2);
    std::erase_if(log, [](const std::string& text) { return text.ends_with(" attributes"); });
    EXPECT_EQ(std::set<std::string>(log.begin(), log.end()),
              (std::set<std::string>{"a removed ./a", "b removed ./b"}));
    EXPECT_EQ(log.size(), 2u);
    // The lost changes are known, and everything is still watched.
    Expect({"mv a/late a/renamed", "mv a/inner/late b/late"},
           {"new moved a a/renamed", "new moved ? b/late"});
}

} // namespace test

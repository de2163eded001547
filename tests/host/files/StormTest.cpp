#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <random>
#include <set>

#include "tests/host/files/MonitorFixture.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace test {

class StormTest : public MonitorTest {
protected:
    using Folder = std::map<std::string, int64>;

    StormTest() {
        for (const char* folder : {"a", "b"})
            fBelieved[NodeOf(folder)] = OnDisk(folder);
    }

    std::string AnyName() {
        static const char* const kFolders[] = {"a/", "b/", "away/"};
        return In(kFolders[fRandom() % 3] + std::to_string(fRandom() % 12));
    }

    // One of the things that happen to files; many fail, as in life.
    void Happen() {
        std::string one = AnyName();
        std::string other = AnyName();
        switch (fRandom() % 7) {
        case 0:
        case 1:
            close(creat(one.c_str(), 0600));
            break;
        case 2:
            unlink(one.c_str());
            break;
        case 3:
        case 4:
            rename(one.c_str(), other.c_str());
            break;
        case 5:
            renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
            break;
        case 6:
            mkdir(one.c_str(), 0700);
            break;
        }
    }

    Folder OnDisk(const std::string& folder) const {
        Folder entries;
        for (const auto& entry : fs::directory_iterator(In(folder))) {
            std::string name = entry.path().filename();
            entries[name] = NodeOf(folder + "/" + name);
        }
        return entries;
    }

    // The folder as a listener knows it that follows the changes.
    const Folder& Believed(const std::string& folder) {
        auto changes = fLog->Changes();
        for (; fFollowed < changes.size(); fFollowed++)
            Follow(changes[fFollowed]);
        return fBelieved[NodeOf(folder)];
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
        int count = 1 << fRandom() % 10;
        auto happen = [&] {
            for (int i = 0; i < count; i++)
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
    MakeFolder("a/inner");
    Watch("a/inner", kFolder);
    TakeLog(1);
    AtOnce([&] {
        // Changes of one file after the other are not merged by the system.
        for (int i = 0; i < 17'000; i++)
            chmod(In(i % 2 ? "a/one" : "a/two").c_str(), i % 4 < 2 ? 0600 : 0644);
        MakeFile("a/late");
        MakeFile("a/inner/late");
    });
    auto log = TakeLog(2);
    std::erase(log, "attributes");
    EXPECT_EQ(std::multiset<std::string>(log.begin(), log.end()),
              (std::multiset<std::string>{"removed ./a", "removed ./b"}));
    // The lost changes are known, and everything is still watched.
    Rename("a/late", "a/renamed");
    Rename("a/inner/late", "b/late");
    EXPECT_EQ(TakeLog(2), (Texts{"moved renamed from a to a", "moved late from ? to b"}));
}

} // namespace test

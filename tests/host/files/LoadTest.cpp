#include <fcntl.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <random>

#include "host/files/monitor/Inotify.h"
#include "host/files/monitor/NodeMonitor.h"
#include "host/loop/ServiceLoop.h"
#include "tests/host/files/MonitorFixture.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;

namespace test {

class LoadTest : public MonitorTest {};

TEST_F(LoadTest, OverflowIsToldAsTheRemovalOfTheTopmostFolderAndIsRecoveredFrom) {
    MakeFolder("a/inner");
    MakeFile("a/inner/file");
    MakeFile("a/odd");
    MakeFile("a/even");
    ASSERT_TRUE(WaitForTold(3));
    Watch("a/inner", kFolder);
    Watch("a/inner/file", kFile);
    fRecorder->Clear();
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        // Changes of one file after the other are not merged by the system.
        for (int i = 0; i < 17'000; i++)
            chmod(In(i % 2 ? "a/odd" : "a/even").c_str(), i % 4 < 2 ? 0600 : 0644);
        MakeFile("a/late");
        Rename("a/inner/file", "a/inner/datei");
    });
    ASSERT_TRUE(WaitForTold(1));
    Flush();
    EXPECT_EQ(Told(), Texts{"removed ./a"});

    // Everything that was lost is known, and everything is still watched.
    fRecorder->Clear();
    Rename("a/late", "a/renamed");
    Rename("a/inner/datei", "a/inner/file");
    MakeFolder("a/inner/folder");
    ASSERT_TRUE(WaitForTold(3));
    EXPECT_EQ(Told(),
              (Texts{"moved renamed from a to a", "moved file from ? to ?", "created ?/folder"}));
}

class StormTest : public MonitorTest {
protected:
    using Folder = std::map<std::string, int64>;

    StormTest() { Watch("b", kFolder); }

    std::string AnyName() {
        static const char* const kFolders[] = {"a/", "b/", "away/"};
        return kFolders[fRandom() % 3] + std::to_string(fRandom() % 12);
    }

    // One of the things that happen to files; many fail, as in life.
    void Happen() {
        std::string one = In(AnyName());
        std::string other = In(AnyName());
        switch (fRandom() % 6) {
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
        }
    }

    Folder OnDisk(const std::string& folder) {
        Folder entries;
        for (const auto& entry : fs::directory_iterator(In(folder))) {
            std::string name = entry.path().filename();
            entries[name] = NodeOf(folder + "/" + name);
        }
        return entries;
    }

    // What a listener that follows the messages believes to be in the folder.
    Folder Believed(const std::string& folder) {
        const int64 directory = NodeOf(folder);
        Folder entries;
        for (const host::NodeChange& change : Changes()) {
            const bool isMove = change.kind == host::ChangeKind::Moved;
            if (change.directory == directory && change.kind != host::ChangeKind::Created) {
                std::erase_if(entries, [&](const auto& item) {
                    return item.second == change.node.node && (isMove || item.first == change.name);
                });
            }
            if ((isMove ? change.toDirectory : change.directory) == directory &&
                change.kind != host::ChangeKind::Removed)
                entries[change.name] = change.node.node;
        }
        return entries;
    }

    std::mt19937 fRandom{20260727};
};

TEST_F(StormTest, MessagesEndWithWhatIsOnTheDisk) {
    for (int round = 0; round < 40; round++) {
        int count = 1 << fRandom() % 10;
        auto happen = [&] {
            for (int i = 0; i < count; i++)
                Happen();
        };
        // All read at once, or read while it happens.
        if (round % 2)
            host::ServiceLoop::Shared().InvokeAndWait(happen);
        else
            happen();
        for (const char* folder : {"a", "b"})
            EXPECT_TRUE(WaitUntil([&] { return Believed(folder) == OnDisk(folder); }))
                << "round " << round << ", folder " << folder << "\nbelieved "
                << testing::PrintToString(Believed(folder)) << "\non disk "
                << testing::PrintToString(OnDisk(folder));
        if (HasFailure())
            return;
    }
}

TEST(InotifyLimit, RunningOutIsAnErrorAndIsSaidOnce) {
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit none = old;
    none.rlim_cur = 0;
    host::Inotify inotify;
    testing::internal::CaptureStderr();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    status_t first = inotify.Open();
    status_t second = inotify.Open();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &old), 0);
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(first, B_NO_MORE_FDS);
    EXPECT_EQ(second, B_NO_MORE_FDS);
    EXPECT_NE(said.find("no more file watches"), std::string::npos);
    EXPECT_EQ(said.find("no more file watches"), said.rfind("no more file watches"));
}

} // namespace test

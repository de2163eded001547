#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include <chrono>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"
#include "tests/host/files/MonitorFixture.h"

using Texts = std::vector<std::string>;

namespace test {

class NewFileTest : public MonitorTest {};

TEST_F(NewFileTest, FileIsAnnouncedWhenItIsQuiet) {
    auto start = std::chrono::steady_clock::now();
    MakeFile("a/file");
    ASSERT_TRUE(WaitForTold(1));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50))
        << "too early for a program that sets attributes last";
    EXPECT_EQ(Told(), Texts{"created a/file"});
    EXPECT_EQ(Changes().back().node.node, NodeOf("a/file"));
}

TEST_F(NewFileTest, SlowCopyIsAnnouncedAgainWhenItsTypeComes) {
    MakeFile("a/file");
    ASSERT_TRUE(WaitForTold(1));
    SetAttribute("a/file", "mime_type", "application/x-vnd.Be-bookmark");
    SetAttribute("a/file", "META:url", "http://example.org/");
    ASSERT_TRUE(WaitForTold(2));
    EXPECT_EQ(Told(), (Texts{"created a/file", "created a/file"}));

    // A type that changes later is no news of this kind.
    SetAttribute("a/file", "mime_type", "text/plain");
    MakeFile("a/last");
    ASSERT_TRUE(WaitForLast("created a/last"));
    EXPECT_EQ(Told().size(), 3u);
}

TEST_F(NewFileTest, FoldersAndOddNodesAreAnnouncedAtOnceAndNeverOpened) {
    MakeFolder("a/folder");
    ASSERT_EQ(mkfifo(In("a/fifo").c_str(), 0666), 0);
    ASSERT_EQ(symlink("nowhere", In("a/dangling").c_str()), 0);
    ASSERT_EQ(symlink("loop", In("a/loop").c_str()), 0);
    host::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    ASSERT_LT(In("a/socket").size(), sizeof(address.sun_path));
    In("a/socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    Flush();
    EXPECT_EQ(Told(), (Texts{"created a/folder", "created a/fifo", "created a/dangling",
                             "created a/loop", "created a/socket"}));
    for (const char* name : {"a/fifo", "a/dangling", "a/socket"})
        Watch(name, kFile);
}

TEST_F(NewFileTest, NewFileThatIsRenamedIsAnnouncedByItsLastName) {
    MakeFile("a/temporary");
    Flush();
    Rename("a/temporary", "a/file");
    MakeFile("a/last");
    ASSERT_TRUE(WaitForLast("created a/last"));
    EXPECT_THAT(Told(), testing::AnyOf(Texts{"created a/file", "created a/last"},
                                       Texts{"created a/temporary", "moved file from a to a",
                                             "created a/last"}));
}

TEST_F(NewFileTest, SavingByATemporaryFileReplacesTheNode) {
    MakeFile("a/file");
    ASSERT_TRUE(WaitForTold(1));
    fRecorder->Clear();
    int64 old = NodeOf("a/file");
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        MakeFile("a/.file.tmp");
        Rename("a/.file.tmp", "a/file");
    });
    ASSERT_TRUE(WaitForTold(2));
    ASSERT_EQ(Told(), (Texts{"removed a/file", "created a/file"}));
    EXPECT_EQ(Changes().front().node.node, old);
    EXPECT_EQ(Changes().back().node.node, NodeOf("a/file"));
}

TEST_F(NewFileTest, SavingWithABackupIsToldByItsResult) {
    MakeFile("a/file");
    ASSERT_TRUE(WaitForTold(1));
    fRecorder->Clear();
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        Rename("a/file", "a/file~");
        MakeFile("a/file");
        Remove("a/file~");
    });
    ASSERT_TRUE(WaitForTold(2));
    EXPECT_EQ(Told(), (Texts{"removed a/file", "created a/file"}));
}

// Common disks hand the number of a removed node to the next new one.
TEST_F(NewFileTest, RemovedAndMadeAgainWithTheSameNumberIsBoth) {
    MakeFile("a/file");
    ASSERT_TRUE(WaitForTold(1));
    Watch("a/file", kFile);
    fRecorder->Clear();
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        Remove("a/file");
        MakeFile("a/file");
    });
    ASSERT_TRUE(WaitForTold(2));
    EXPECT_EQ(Told(), (Texts{"removed a/file", "created a/file"}));

    // The new node is watched on its own, whatever its number.
    Watch("a/file", kFile);
    fRecorder->Clear();
    SetAttribute("a/file", "META:url", "x");
    Flush();
    EXPECT_EQ(Told(), Texts{"attributes"});
}

TEST_F(NewFileTest, NamesAreBytes) {
    Texts names = {"new\nline", "\xff\xfe invalid", "\x1b[31m", std::string(255, 'x')};
    Texts expected;
    for (const std::string& name : names) {
        MakeFolder("a/" + name);
        expected.push_back("created a/" + name);
    }
    Flush();
    EXPECT_EQ(Told(), expected);
}

} // namespace test

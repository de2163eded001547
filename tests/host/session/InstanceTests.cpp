#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <vector>

#include "host/session/instance/InstanceAddress.h"
#include "host/session/instance/InstanceLock.h"
#include "host/session/instance/InstanceSocket.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using namespace host;

namespace {

constexpr bigtime_t kSecond = 1'000'000;
const std::string kSignature = "application/x-vnd.test-instance";

// A running program: its lock, its socket and what it got.
class Instance {
public:
    explicit Instance(const std::string& signature = kSignature)
        : fLock(signature)
        , fLocked(fLock.Acquire())
        , fSocket(fLock, [this](std::string_view bytes) {
            const std::lock_guard guard(fMutex);
            fReceived.emplace_back(bytes);
        }) {}

    status_t InitCheck() const { return fLocked == B_OK ? fSocket.InitCheck() : fLocked; }

    std::vector<std::string> Received() const {
        const std::lock_guard guard(fMutex);
        return fReceived;
    }

private:
    mutable std::mutex fMutex;
    std::vector<std::string> fReceived;
    InstanceLock fLock;
    const status_t fLocked;
    InstanceSocket fSocket;
};

// A peer that says what it likes.
class Peer {
public:
    Peer()
        : Peer(NotYet{}) {
        Connect();
    }
    struct NotYet {};
    explicit Peer(NotYet)
        : fDirectory(false)
        , fConnection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const timeval deadline{10, 0};
        setsockopt(fConnection.Get(), SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
    }

    void Connect() {
        const InstanceAddress address(fDirectory, RuntimeFileName(kSignature));
        EXPECT_EQ(0, connect(fConnection.Get(), address.Get(), address.Size()));
    }
    void Say(const std::string& bytes) {
        send(fConnection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
    void SayMessage(uint32 size, const std::string& bytes) {
        Say(std::string(reinterpret_cast<const char*>(&size), sizeof size) + bytes);
    }
    // Whether the other end hangs up, without an answer.
    bool IsHungUp() {
        char byte;
        const ssize_t count = recv(fConnection.Get(), &byte, 1, 0);
        return count == 0 || (count < 0 && errno == ECONNRESET);
    }

private:
    RuntimeDirectory fDirectory;
    Descriptor fConnection;
};

class InstanceTest : public testing::Test {
protected:
    fs::path SocketPath() const {
        return fHome.Runtime() / "quillbar" / (RuntimeFileName(kSignature) + ".socket");
    }

    test::TemporaryHome fHome;
};

TEST_F(InstanceTest, MessagesArriveWholeAndInOrder) {
    Instance instance;
    ASSERT_EQ(B_OK, instance.InitCheck());
    const std::vector<std::string> sent = {"one", std::string(kMaxInstanceMessage, 'x'),
                                           std::string("a\0b", 3)};
    for (const std::string& message : sent)
        EXPECT_EQ(B_OK, SendToInstance(kSignature, message, 10 * kSecond));
    EXPECT_EQ(B_BAD_VALUE, SendToInstance(kSignature, "", kSecond));
    EXPECT_EQ(B_BAD_VALUE, SendToInstance(kSignature, sent[1] + "x", kSecond));
    EXPECT_EQ(sent, instance.Received());
}

TEST_F(InstanceTest, SaysWhetherAProgramRuns) {
    EXPECT_FALSE(InstanceRuns(kSignature));
    EXPECT_EQ(B_BAD_PORT_ID, SendToInstance(kSignature, "x", kSecond));
    {
        Instance instance;
        EXPECT_TRUE(InstanceRuns(kSignature));
        EXPECT_FALSE(InstanceRuns(kSignature + "2"));
    }
    EXPECT_FALSE(InstanceRuns(kSignature));
    EXPECT_FALSE(fs::exists(SocketPath()));
}

TEST_F(InstanceTest, SocketWorksBelowAVeryLongPath) {
    const fs::path deep = fHome.Path() / std::string(120, 'd');
    fs::create_directory(deep);
    setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
    Instance instance("application/" + std::string(200, 's'));
    ASSERT_EQ(B_OK, instance.InitCheck());
    EXPECT_EQ(B_OK, SendToInstance("application/" + std::string(200, 's'), "x", 10 * kSecond));
    EXPECT_FALSE(InstanceRuns("application/" + std::string(199, 's') + "t"));
}

TEST_F(InstanceTest, HostilePeersOnlyLoseTheirConnection) {
    Instance instance;
    Peer tooLong;
    tooLong.SayMessage(UINT32_MAX, "x");
    EXPECT_TRUE(tooLong.IsHungUp());
    Peer empty;
    empty.SayMessage(0, "");
    EXPECT_TRUE(empty.IsHungUp());
    Peer babbling;
    babbling.SayMessage(2, "abc");
    EXPECT_TRUE(babbling.IsHungUp());
    { Peer silent; }
    {
        Peer leaving;
        leaving.SayMessage(100, "half");
    }
    {
        Peer hasty;
        hasty.SayMessage(2, "ok");
    }
    EXPECT_TRUE(test::WaitUntil([&] { return instance.Received().size() == 1; }));
    EXPECT_EQ(B_OK, SendToInstance(kSignature, "still there", 10 * kSecond));
    EXPECT_EQ((std::vector<std::string>{"ok", "still there"}), instance.Received());
}

TEST_F(InstanceTest, SlowPeersDoNotHoldUpOthersAndAreDropped) {
    Instance instance;
    Peer slow;
    slow.SayMessage(10, "half");
    EXPECT_EQ(B_OK, SendToInstance(kSignature, "quick", 10 * kSecond));
    EXPECT_TRUE(slow.IsHungUp());
    EXPECT_EQ(std::vector<std::string>{"quick"}, instance.Received());
}

TEST_F(InstanceTest, ConnectionsAreBoundedAndComeBack) {
    Instance instance;
    std::vector<std::unique_ptr<Peer>> crowd;
    for (int i = 0; i < 17; i++)
        crowd.push_back(std::make_unique<Peer>());
    EXPECT_TRUE(crowd.back()->IsHungUp());
    crowd.clear();
    EXPECT_TRUE(
        test::WaitUntil([] { return SendToInstance(kSignature, "room again", kSecond) == B_OK; }));
}

TEST_F(InstanceTest, PeersAreTurnedAwayWhileThereAreNoDescriptors) {
    Instance instance;
    Peer peer(Peer::NotYet{});
    rlimit old;
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &old));
    rlimit none = old;
    none.rlim_cur = static_cast<rlim_t>(Descriptor(dup(0)).Get());
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &none));
    peer.Connect();
    EXPECT_TRUE(peer.IsHungUp());
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &old));
    EXPECT_EQ(B_OK, SendToInstance(kSignature, "better now", 10 * kSecond));
}

TEST_F(InstanceTest, SendingGivesUpOnAProgramThatHangs) {
    InstanceLock lock(kSignature);
    ASSERT_EQ(B_OK, lock.Acquire());
    const InstanceAddress address(lock.Directory(), lock.Name());
    const Descriptor deaf(socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(0, bind(deaf.Get(), address.Get(), address.Size()));
    ASSERT_EQ(0, listen(deaf.Get(), 1));
    EXPECT_EQ(B_TIMED_OUT, SendToInstance(kSignature, "x", 50'000));
    EXPECT_EQ(B_TIMED_OUT,
              SendToInstance(kSignature, std::string(kMaxInstanceMessage, 'x'), 50'000));
    while (InstanceRuns(kSignature) &&
           SendToInstance(kSignature, "fill the queue", 1000) != B_TIMED_OUT) {
    }
    EXPECT_TRUE(InstanceRuns(kSignature));
}

TEST_F(InstanceTest, DirectoryIsPrivateAndNothingElseIsUsed) {
    const fs::path directory = fHome.Runtime() / "quillbar";
    {
        const RuntimeDirectory made(true);
        ASSERT_EQ(B_OK, made.InitCheck());
        struct stat status;
        ASSERT_EQ(0, stat(directory.c_str(), &status));
        EXPECT_EQ(0700u, status.st_mode & 07777);
    }
    fs::permissions(directory, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(B_NOT_ALLOWED, InstanceLock(kSignature).Acquire());

    fs::remove(directory);
    fs::create_directory(fHome.Path() / "elsewhere");
    fs::permissions(fHome.Path() / "elsewhere", fs::perms::owner_all);
    fs::create_directory_symlink(fHome.Path() / "elsewhere", directory);
    EXPECT_NE(B_OK, InstanceLock(kSignature).Acquire());
    EXPECT_TRUE(fs::is_empty(fHome.Path() / "elsewhere"));

    fs::remove(directory);
    std::ofstream(directory) << "a file";
    EXPECT_NE(B_OK, InstanceLock(kSignature).Acquire());
}

TEST_F(InstanceTest, FileNamesStayInTheDirectoryAndDiffer) {
    for (const char* signature : {"", "..", "../x", "/etc/passwd", "a\nb", "\xff\xfe"}) {
        const std::string name = RuntimeFileName(signature) + ".lock";
        EXPECT_EQ(std::string::npos, name.find_first_of("/\n")) << signature;
        EXPECT_NE(0u, name.find("..")) << signature;
    }
    EXPECT_NE(RuntimeFileName("a/b"), RuntimeFileName("a%2Fb"));
    EXPECT_NE(RuntimeFileName(std::string(300, 'a') + "1"),
              RuntimeFileName(std::string(300, 'a') + "2"));
    EXPECT_LE(RuntimeFileName(std::string(300, '/')).size(), 64u);
}

} // namespace

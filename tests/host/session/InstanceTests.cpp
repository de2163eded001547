#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <vector>

#include "host/loop/Descriptor.h"
#include "host/session/instance/InstanceSocket.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using namespace host;

namespace {

constexpr bigtime_t kSecond = 1'000'000;
const std::string kSignature = "application/x-vnd.test-instance";
const std::string kLongest(kMaxInstanceMessage, 'x');

// A running program and the messages it got.
class Instance {
public:
    explicit Instance(const std::string& signature = kSignature)
        : fSocket(signature) {
        status = fSocket.Acquire();
        if (status == B_OK) {
            status = fSocket.Listen([this](std::string_view bytes) {
                const std::lock_guard guard(fMutex);
                fReceived.emplace_back(bytes);
            });
        }
    }

    std::vector<std::string> Received() const {
        const std::lock_guard guard(fMutex);
        return fReceived;
    }

    status_t status;

private:
    mutable std::mutex fMutex;
    std::vector<std::string> fReceived;
    InstanceSocket fSocket;
};

// A peer that keeps to no protocol.
class Peer {
public:
    explicit Peer(const fs::path& path)
        : fConnection(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        const timeval deadline{10, 0};
        setsockopt(fConnection.Get(), SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
        path.string().copy(fAddress.sun_path, sizeof fAddress.sun_path - 1);
    }
    sockaddr* Address() { return reinterpret_cast<sockaddr*>(&fAddress); }
    int Socket() const { return fConnection.Get(); }

    void Connect() { EXPECT_EQ(0, connect(Socket(), Address(), sizeof fAddress)); }
    // An open connection ends without a signal when the program hangs up.
    void Say(const std::string& bytes) { send(Socket(), bytes.data(), bytes.size(), MSG_NOSIGNAL); }
    // Whether the other end hangs up, without an answer.
    bool IsHungUp() {
        char byte;
        const ssize_t count = recv(Socket(), &byte, 1, 0);
        return count == 0 || (count < 0 && errno == ECONNRESET);
    }

private:
    sockaddr_un fAddress{AF_UNIX, {}};
    Descriptor fConnection;
};

class InstanceTest : public testing::Test {
protected:
    fs::path SocketPath() const {
        return fHome.Runtime() / "quillbar" / "application%2Fx-vnd.test-instance.socket";
    }
    std::unique_ptr<Peer> Connected(const std::vector<std::string>& packets = {}) {
        auto peer = std::make_unique<Peer>(SocketPath());
        peer->Connect();
        for (const std::string& packet : packets)
            peer->Say(packet);
        return peer;
    }

    test::TemporaryHome fHome;
};

TEST_F(InstanceTest, MessagesArriveWholeAndInOrder) {
    EXPECT_FALSE(InstanceRuns(kSignature));
    EXPECT_EQ(B_BAD_PORT_ID, SendToInstance(kSignature, "x", kSecond));
    {
        Instance instance;
        ASSERT_EQ(B_OK, instance.status);
        EXPECT_TRUE(InstanceRuns(kSignature));
        EXPECT_FALSE(InstanceRuns(kSignature + "2"));
        const std::vector<std::string> sent = {"one", kLongest, std::string("a\0b", 3)};
        for (const std::string& message : sent)
            EXPECT_EQ(B_OK, SendToInstance(kSignature, message, 10 * kSecond));
        EXPECT_EQ(B_BAD_VALUE, SendToInstance(kSignature, "", kSecond));
        EXPECT_EQ(B_BAD_VALUE, SendToInstance(kSignature, kLongest + "x", kSecond));
        EXPECT_EQ(sent, instance.Received());
    }
    EXPECT_FALSE(InstanceRuns(kSignature));
    EXPECT_FALSE(fs::exists(SocketPath()));
}

TEST_F(InstanceTest, SocketWorksBelowAVeryLongPath) {
    const fs::path deep = fHome.Path() / std::string(120, 'd');
    fs::create_directory(deep);
    setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
    const Instance instance;
    ASSERT_EQ(B_OK, instance.status);
    EXPECT_EQ(B_OK, SendToInstance(kSignature, "x", 10 * kSecond));
    // A name that fits into no address is refused.
    EXPECT_EQ(B_NAME_TOO_LONG, Instance("application/" + std::string(100, 's')).status);
}

TEST_F(InstanceTest, HostilePeersOnlyLoseTheirConnection) {
    const Instance instance;
    EXPECT_TRUE(Connected({kLongest + "x"})->IsHungUp());
    EXPECT_TRUE(Connected({""})->IsHungUp());
    Connected();
    Connected({"hasty"});
    const auto babbling = Connected({"first", "second"});
    EXPECT_TRUE(test::WaitUntil([&] { return instance.Received().size() == 2; }));
    EXPECT_EQ(B_OK, SendToInstance(kSignature, "still there", 10 * kSecond));
    EXPECT_EQ((std::vector<std::string>{"hasty", "first", "still there"}), instance.Received());
}

TEST_F(InstanceTest, SilentPeersDoNotHoldUpOthersAndAreDropped) {
    const Instance instance;
    const auto silent = Connected();
    EXPECT_EQ(B_OK, SendToInstance(kSignature, "quick", 10 * kSecond));
    EXPECT_TRUE(silent->IsHungUp());
}

TEST_F(InstanceTest, ConnectionsAreBoundedAndComeBack) {
    const Instance instance;
    std::vector<std::unique_ptr<Peer>> crowd;
    for (int i = 0; i < 17; i++)
        crowd.push_back(Connected());
    EXPECT_TRUE(crowd.back()->IsHungUp());
    crowd.clear();
    EXPECT_TRUE(
        test::WaitUntil([] { return SendToInstance(kSignature, "room again", kSecond) == B_OK; }));
}

TEST_F(InstanceTest, PeersAreTurnedAwayWhileThereAreNoDescriptors) {
    const Instance instance;
    Peer peer(SocketPath());
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
    InstanceSocket lock(kSignature);
    ASSERT_EQ(B_OK, lock.Acquire());
    EXPECT_EQ(B_ALREADY_RUNNING, InstanceSocket(kSignature).Acquire());
    Peer deaf(SocketPath());
    ASSERT_EQ(0, bind(deaf.Socket(), deaf.Address(), sizeof(sockaddr_un)));
    ASSERT_EQ(0, listen(deaf.Socket(), 1));
    EXPECT_EQ(B_TIMED_OUT, SendToInstance(kSignature, "x", 50'000));
    EXPECT_EQ(B_TIMED_OUT, SendToInstance(kSignature, kLongest, 50'000));
    EXPECT_EQ(B_TIMED_OUT, SendToInstance(kSignature, "the queue is full", 50'000));
    EXPECT_TRUE(InstanceRuns(kSignature));
}

TEST_F(InstanceTest, DirectoryIsPrivateAndNothingElseIsUsed) {
    const fs::path directory = fHome.Runtime() / "quillbar";
    EXPECT_EQ(B_OK, Instance("../x").status);
    struct stat status;
    ASSERT_EQ(0, stat(directory.c_str(), &status));
    EXPECT_EQ(0700u, status.st_mode & 07777);
    EXPECT_EQ(1, std::distance(fs::directory_iterator(directory), {})) << "its lock, in here";

    fs::permissions(directory, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(B_NOT_ALLOWED, InstanceSocket(kSignature).Acquire());

    fs::remove_all(directory);
    fs::create_directory(fHome.Path() / "elsewhere");
    fs::permissions(fHome.Path() / "elsewhere", fs::perms::owner_all);
    fs::create_directory_symlink(fHome.Path() / "elsewhere", directory);
    EXPECT_NE(B_OK, InstanceSocket(kSignature).Acquire());
    EXPECT_TRUE(fs::is_empty(fHome.Path() / "elsewhere"));
}

} // namespace

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"
#include "host/session/instance/InstanceSocket.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using namespace host;

namespace {

const std::string kSignature = "application/x-vnd.test-instance";
const std::string kLongest(kMaxInstanceMessage, 'x');

status_t Send(const std::string& bytes) {
    return SendToInstance(kSignature, bytes, 10'000'000);
}

class InstanceTest : public testing::Test {
protected:
    // The other end of a new socket, which keeps to no protocol.
    Descriptor Reach(std::initializer_list<std::string> packets = {}) const {
        Descriptor end(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
        const timeval deadline{10, 0};
        setsockopt(end.Get(), SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
        sockaddr_un address{AF_UNIX, {}};
        path.string().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(0, connect(end.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address));
        for (const std::string& packet : packets)
            send(end.Get(), packet.data(), packet.size(), MSG_NOSIGNAL);
        return end;
    }
    // Whether the program hangs up, without an answer.
    static bool IsHungUp(const Descriptor& end, int flags = 0) {
        char byte;
        const ssize_t count = recv(end.Get(), &byte, 1, flags);
        return count == 0 || (count < 0 && errno == ECONNRESET);
    }
    // Runs as the program of the signature until it is called again.
    status_t Run(const std::string& signature = kSignature) {
        program = std::make_unique<InstanceSocket>(signature);
        const status_t status = program->Acquire();
        return status != B_OK ? status : program->Listen([this](std::string_view bytes) {
            received.emplace_back(bytes);
        });
    }
    test::TemporaryHome home;
    const fs::path directory = home.Runtime() / "quillbar";
    const fs::path path = directory / "application%2Fx-vnd.test-instance.socket";
    std::vector<std::string> received; // the service thread's
    std::unique_ptr<InstanceSocket> program;
};

TEST_F(InstanceTest, HostilePeersOnlyLoseTheirConnection) {
    ASSERT_EQ(B_OK, Run());
    const Descriptor silent = Reach();
    for (const std::string& bad : {kLongest + "x", std::string()})
        EXPECT_TRUE(IsHungUp(Reach({bad})));
    Reach();
    Reach({"hasty"});
    const Descriptor babbling = Reach({"first", "second"});
    EXPECT_EQ(B_OK, Send(kLongest));
    EXPECT_EQ(B_BAD_VALUE, Send(kLongest + "x"));
    ServiceLoop::Shared().InvokeAndWait(
        [&] { EXPECT_THAT(received, testing::ElementsAre("hasty", "first", kLongest)); });
    EXPECT_TRUE(IsHungUp(silent));

    std::vector<Descriptor> crowd;
    for (int i = 0; i < 17; i++)
        crowd.push_back(Reach());
    EXPECT_TRUE(IsHungUp(crowd.back()));
    EXPECT_FALSE(IsHungUp(crowd.front(), MSG_DONTWAIT)) << "it is not its time that is up";
    crowd.clear();
    EXPECT_TRUE(test::WaitUntil([] { return Send("room again") == B_OK; }));
}

TEST_F(InstanceTest, PeersAreTurnedAwayWhileThereAreNoDescriptors) {
    ASSERT_EQ(B_OK, Run());
    rlimit old;
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &old));
    const rlimit oneMore{static_cast<rlim_t>(Descriptor(dup(0)).Get()) + 1, old.rlim_max};
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &oneMore));
    EXPECT_TRUE(IsHungUp(Reach()));
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &old));
    EXPECT_EQ(B_OK, Send("better now"));
}

TEST_F(InstanceTest, DirectoryIsPrivateAndNothingElseIsUsed) {
    EXPECT_EQ(B_OK, Run("../x"));
    EXPECT_EQ(fs::perms::owner_all, fs::status(directory).permissions());
    EXPECT_EQ(2, std::distance(fs::directory_iterator(directory), {})) << "socket and lock";
    // A name that fits into no address is refused.
    EXPECT_EQ(B_NAME_TOO_LONG, Run("application/" + std::string(100, 's')));

    fs::permissions(directory, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(B_NOT_ALLOWED, Run());

    const fs::path elsewhere = home.Path() / std::string(120, 'd');
    fs::remove_all(directory);
    fs::create_directory(elsewhere);
    fs::permissions(elsewhere, fs::perms::owner_all);
    fs::create_directory_symlink(elsewhere, directory);
    EXPECT_NE(B_OK, Run());
    EXPECT_TRUE(fs::is_empty(elsewhere));

    setenv("XDG_RUNTIME_DIR", elsewhere.c_str(), 1); // too long for an address
    EXPECT_EQ(B_OK, Run());
    EXPECT_EQ(B_OK, Send("x"));
}

} // namespace

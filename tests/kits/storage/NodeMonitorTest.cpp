#include "kits/storage/NodeMonitor.h"

#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "kits/app/AppDefs.h"
#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "tests/kits/storage/StorageFixture.h"
#include "tests/support/Wait.h"

namespace test {

class Collector : public BLooper {
public:
    void MessageReceived(BMessage* message) override {
        std::lock_guard lock(fMutex);
        fMessages.push_back(*message);
    }

    std::vector<BMessage> Messages() const {
        std::lock_guard lock(fMutex);
        return fMessages;
    }

private:
    mutable std::mutex fMutex;
    std::vector<BMessage> fMessages;
};

class NodeMonitorTest : public StorageTest {
protected:
    NodeMonitorTest() {
        MakeFolder("folder");
        MakeFolder("other");
        MakeFile("folder/file");
        fCollector->Run();
        fMessenger = BMessenger(fCollector);
    }
    ~NodeMonitorTest() override {
        stop_watching(fMessenger);
        fCollector->Lock();
        fCollector->Quit();
    }

    node_ref NodeOf(const std::string& name) const {
        node_ref node;
        EXPECT_EQ(BEntry(In(name).c_str()).GetNodeRef(&node), B_OK) << name;
        return node;
    }
    // The message at `index`, when it has come.
    BMessage Message(size_t index) const {
        EXPECT_TRUE(WaitUntil([&] { return fCollector->Messages().size() > index; }));
        auto messages = fCollector->Messages();
        return index < messages.size() ? messages[index] : BMessage();
    }
    static int32 Int32(const BMessage& message, const char* field) {
        int32 value = -1;
        EXPECT_EQ(message.FindInt32(field, &value), B_OK) << field;
        return value;
    }
    static int64 Int64(const BMessage& message, const char* field) {
        int64 value = -1;
        EXPECT_EQ(message.FindInt64(field, &value), B_OK) << field;
        return value;
    }
    static std::string String(const BMessage& message, const char* field) {
        const char* value = "";
        EXPECT_EQ(message.FindString(field, &value), B_OK) << field;
        return value;
    }
    void ExpectNode(const BMessage& message, int32 opcode, node_ref node) {
        EXPECT_EQ(message.what, uint32(B_NODE_MONITOR));
        EXPECT_EQ(Int32(message, "opcode"), opcode);
        EXPECT_EQ(Int32(message, "device"), node.device);
        EXPECT_EQ(Int64(message, "node"), node.node);
    }
    void Rename(const std::string& from, const std::string& to) const {
        std::filesystem::rename(OnDisk(from), OnDisk(to));
    }

    Collector* fCollector = new Collector;
    BMessenger fMessenger;
};

TEST_F(NodeMonitorTest, MessagesHaveTheirFields) {
    node_ref folder = NodeOf("folder");
    node_ref other = NodeOf("other");
    node_ref file = NodeOf("folder/file");
    ASSERT_EQ(watch_node(&folder, B_WATCH_NAME | B_WATCH_DIRECTORY, fMessenger), B_OK);
    ASSERT_EQ(watch_node(&other, B_WATCH_DIRECTORY, fMessenger), B_OK);
    ASSERT_EQ(watch_node(&file, B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR, fMessenger), B_OK);

    Rename("folder/file", "other/datei");
    BMessage moved = Message(0);
    ExpectNode(moved, B_ENTRY_MOVED, file);
    EXPECT_EQ(Int64(moved, "from directory"), folder.node);
    EXPECT_EQ(Int64(moved, "to directory"), other.node);
    EXPECT_EQ(String(moved, "name"), "datei");
    // The ref that the message makes leads to the file.
    entry_ref ref(Int32(moved, "device"), Int64(moved, "to directory"), "datei");
    EXPECT_TRUE(BEntry(&ref).Exists());

    BNode(In("other/datei").c_str()).WriteAttr("META:url", B_STRING_TYPE, 0, "x", 2);
    BMessage attribute = Message(1);
    ExpectNode(attribute, B_ATTR_CHANGED, file);

    std::filesystem::resize_file(OnDisk("other/datei"), 10);
    ExpectNode(Message(2), B_STAT_CHANGED, file);

    std::filesystem::remove(OnDisk("other/datei"));
    BMessage removed = Message(3);
    ExpectNode(removed, B_ENTRY_REMOVED, file);
    EXPECT_EQ(Int64(removed, "directory"), other.node);

    MakeFolder("folder/new");
    BMessage created = Message(4);
    ExpectNode(created, B_ENTRY_CREATED, NodeOf("folder/new"));
    EXPECT_EQ(Int64(created, "directory"), folder.node);
    EXPECT_EQ(String(created, "name"), "new");
}

TEST_F(NodeMonitorTest, TargetThatIsGoneIsForgotten) {
    node_ref folder = NodeOf("folder");
    auto* second = new Collector;
    second->Run();
    BMessenger gone(second);
    ASSERT_EQ(watch_node(&folder, B_WATCH_DIRECTORY, gone), B_OK);
    second->Lock();
    second->Quit();
    ASSERT_EQ(watch_node(&folder, B_WATCH_DIRECTORY, fMessenger), B_OK);
    MakeFolder("folder/one");
    EXPECT_EQ(String(Message(0), "name"), "one");
    EXPECT_TRUE(WaitUntil([&] { return stop_watching(gone) == B_BAD_VALUE; }));
    EXPECT_EQ(watch_node(&folder, B_WATCH_DIRECTORY, gone), B_BAD_HANDLER);
}

// Gives this process few watches. It must have one thread only.
void LimitWatches(int count) {
    const std::string user = "0 " + std::to_string(getuid()) + " 1";
    if (unshare(CLONE_NEWUSER) != 0)
        _exit(EXIT_FAILURE);
    std::ofstream("/proc/self/uid_map") << user;
    std::ofstream("/proc/sys/user/max_inotify_watches") << count;
}

// Returns what watching two directories leads to when there is one watch.
std::string WatchWithoutEnough() {
    LimitWatches(1);
    TemporaryHome home;
    node_ref nodes[2];
    for (int i = 0; i < 2; i++) {
        const std::string name = "/boot/home/" + std::to_string(i);
        create_directory(name.c_str(), 0777);
        BEntry(name.c_str()).GetNodeRef(&nodes[i]);
    }
    auto* collector = new Collector;
    collector->Run();
    const BMessenger target(collector);
    const status_t first = watch_node(&nodes[0], B_WATCH_DIRECTORY, target);
    const status_t refused = watch_node(&nodes[1], B_WATCH_DIRECTORY, target);
    watch_node(&nodes[0], B_STOP_WATCHING, target);
    const status_t last = watch_node(&nodes[1], B_WATCH_DIRECTORY, target);
    const char* limit = watch_limit_file(refused);
    return "first " + std::to_string(first) + ", refused by " + (limit ? limit : "nothing") +
           ", last " + std::to_string(last);
}

TEST(WatchLimitTest, RunningOutIsAnErrorThatNamesTheLimit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string limit = "/proc/sys/fs/inotify/max_user_watches";
    auto watch = [] {
        fprintf(stderr, "%s\n", WatchWithoutEnough().c_str());
        _exit(EXIT_SUCCESS);
    };
    EXPECT_EXIT(watch(), testing::ExitedWithCode(EXIT_SUCCESS),
                "The limit is in " + limit + ".*\nfirst 0, refused by " + limit + ", last 0");
    EXPECT_EQ(watch_limit_file(B_PERMISSION_DENIED), nullptr);
}

} // namespace test

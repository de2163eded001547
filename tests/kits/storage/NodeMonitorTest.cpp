#include "kits/storage/NodeMonitor.h"

#include <filesystem>
#include <mutex>

#include <gtest/gtest.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace test {

class Collector : public BLooper {
public:
    void MessageReceived(BMessage* message) override {
        std::lock_guard lock(fMutex);
        fMessages.push_back(*message);
    }
    // The message at `index`, when it has come.
    BMessage At(size_t index) const {
        EXPECT_TRUE(WaitUntil([&] {
            std::lock_guard lock(fMutex);
            return fMessages.size() > index;
        }));
        std::lock_guard lock(fMutex);
        return index < fMessages.size() ? fMessages[index] : BMessage();
    }

private:
    mutable std::mutex fMutex;
    std::vector<BMessage> fMessages;
};

class NodeMonitorTest : public testing::Test {
protected:
    NodeMonitorTest() {
        fs::create_directory(fHome.Path() / "other");
        MakeBookmark(fHome.Path() / "folder" / "file", "http://x");
    }

    static node_ref NodeOf(const std::string& name) {
        node_ref node;
        EXPECT_EQ(BEntry(("/boot/home/" + name).c_str()).GetNodeRef(&node), B_OK) << name;
        return node;
    }
    static void ExpectMessage(const BMessage& message, int32 opcode, node_ref node,
                              const std::map<std::string, int64>& directories,
                              const char* name = "") {
        EXPECT_EQ(message.what, uint32(B_NODE_MONITOR));
        EXPECT_EQ(message.GetInt32("opcode", -1), opcode);
        EXPECT_EQ(message.GetInt32("device", -1), node.device);
        EXPECT_EQ(message.GetInt64("node", -1), node.node);
        for (const auto& [field, directory] : directories)
            EXPECT_EQ(message.GetInt64(field.c_str(), -1), directory) << field;
        EXPECT_STREQ(message.GetString("name", ""), name);
    }

    TemporaryHome fHome;
};

TEST_F(NodeMonitorTest, MessagesHaveTheirFieldsAndATargetThatIsGoneIsForgotten) {
    auto* collector = new Collector;
    auto* ended = new Collector;
    collector->Run();
    ended->Run();
    const BMessenger target(collector);
    const BMessenger gone(ended);
    const node_ref folder = NodeOf("folder");
    const node_ref other = NodeOf("other");
    const node_ref file = NodeOf("folder/file");
    ASSERT_EQ(watch_node(&other, B_WATCH_DIRECTORY, gone), B_OK);
    ASSERT_EQ(watch_node(&folder, B_WATCH_NAME | B_WATCH_DIRECTORY, target), B_OK);
    ASSERT_EQ(watch_node(&other, B_WATCH_DIRECTORY, target), B_OK);
    ASSERT_EQ(watch_node(&file, B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR, target), B_OK);
    ended->Lock();
    ended->Quit();

    const fs::path moved = fHome.Path() / "other" / "datei";
    fs::rename(fHome.Path() / "folder" / "file", moved);
    ExpectMessage(collector->At(0), B_ENTRY_MOVED, file,
                  {{"from directory", folder.node}, {"to directory", other.node}}, "datei");
    EXPECT_EQ(watch_node(&folder, B_WATCH_DIRECTORY, gone), B_BAD_HANDLER);
    // The ref that the message makes leads to the file.
    const entry_ref ref(file.device, other.node, "datei");
    EXPECT_TRUE(BEntry(&ref).Exists());
    SetUrl(moved, "http://changed");
    ExpectMessage(collector->At(1), B_ATTR_CHANGED, file, {});
    fs::resize_file(moved, 10);
    ExpectMessage(collector->At(2), B_STAT_CHANGED, file, {});
    fs::remove(moved);
    ExpectMessage(collector->At(3), B_ENTRY_REMOVED, file, {{"directory", other.node}}, "datei");
    fs::create_directory(fHome.Path() / "folder" / "new");
    ExpectMessage(collector->At(4), B_ENTRY_CREATED, NodeOf("folder/new"),
                  {{"directory", folder.node}}, "new");
    collector->Lock();
    collector->Quit();
}

} // namespace test

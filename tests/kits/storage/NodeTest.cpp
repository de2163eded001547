#include "kits/storage/Node.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cstring>

#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "tests/kits/storage/StorageFixture.h"

namespace test {

class NodeTest : public StorageTest {
protected:
    NodeTest() { MakeFile("file"); }

    void SetOnDisk(const char* attribute, const std::string& value) const {
        ASSERT_EQ(setxattr(OnDisk("file").c_str(), attribute, value.data(), value.size(), 0), 0);
    }
    std::string GetFromDisk(const char* attribute) const {
        char value[100];
        ssize_t size = getxattr(OnDisk("file").c_str(), attribute, value, sizeof(value));
        return size < 0 ? "<none>" : std::string(value, size_t(size));
    }
};

TEST_F(NodeTest, AttributesAreTheUsersExtendedAttributes) {
    BNode node(In("file").c_str());
    ASSERT_EQ(node.InitCheck(), B_OK);
    const char url[] = "http://example.org/";
    EXPECT_EQ(node.WriteAttr("META:url", B_STRING_TYPE, 0, url, sizeof(url)), sizeof(url));
    EXPECT_EQ(GetFromDisk("user.META:url"), std::string(url, sizeof(url)));

    SetOnDisk("user.META:keyw", "by hand");
    attr_info info;
    ASSERT_EQ(node.GetAttrInfo("META:keyw", &info), B_OK);
    EXPECT_EQ(info.size, 7);
    EXPECT_EQ(info.type, B_STRING_TYPE);
    char value[8] = "*******";
    EXPECT_EQ(node.ReadAttr("META:keyw", B_STRING_TYPE, 0, value, 3), 3);
    EXPECT_STREQ(value, "by ****");
    EXPECT_EQ(node.ReadAttr("META:keyw", B_RAW_TYPE, 3, value, sizeof(value)), 4);
    EXPECT_EQ(node.ReadAttr("META:keyw", B_STRING_TYPE, 100, value, sizeof(value)), 0);

    EXPECT_EQ(node.GetAttrInfo("none", &info), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(node.ReadAttr("none", B_STRING_TYPE, 0, value, 8), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeTest, LargeValuesAreKeptOrRefusedWhole) {
    BNode node(In("file").c_str());
    attr_info info;
    std::string large(64 * 1024, 'x');
    std::string read(large.size(), '-');
    ssize_t written = node.WriteAttr("large", B_STRING_TYPE, 0, large.data(), large.size());
    if (written == ssize_t(large.size())) {
        EXPECT_EQ(node.ReadAttr("large", B_STRING_TYPE, 0, read.data(), read.size()), written);
        EXPECT_EQ(read, large);
    } else {
        EXPECT_EQ(written, B_DEVICE_FULL);
        EXPECT_EQ(node.GetAttrInfo("large", &info), B_ENTRY_NOT_FOUND);
    }
    std::string tooLarge(64 * 1024 + 1, 'x');
    EXPECT_EQ(node.WriteAttr("large", B_STRING_TYPE, 0, tooLarge.data(), tooLarge.size()),
              B_DEVICE_FULL);
    EXPECT_EQ(node.WriteAttr(std::string(256, 'n').c_str(), B_STRING_TYPE, 0, "", 0),
              B_NAME_TOO_LONG);
}

TEST_F(NodeTest, OddNodesHaveNoAttributesAndNeverBlock) {
    ASSERT_EQ(mkfifo(OnDisk("fifo").c_str(), 0666), 0);
    MakeLink("dangling", "nowhere");
    MakeLink("loop", "loop");
    char value[8];
    for (const char* name : {"fifo", "dangling", "loop"}) {
        BNode node(In(name).c_str());
        ASSERT_EQ(node.InitCheck(), B_OK) << name;
        EXPECT_LT(node.ReadAttr("META:url", B_STRING_TYPE, 0, value, sizeof(value)), 0) << name;
        EXPECT_EQ(node.WriteAttr("META:url", B_STRING_TYPE, 0, "x", 1), B_NOT_ALLOWED) << name;
        EXPECT_EQ(node.Sync(), B_OK) << name;
        BFile file(In(name).c_str(), B_READ_WRITE);
        EXPECT_LT(file.InitCheck(), B_OK) << name;
    }
    EXPECT_EQ(BFile(In("fifo").c_str(), B_WRITE_ONLY).InitCheck(), B_NOT_ALLOWED);
    EXPECT_EQ(BNode(In("missing").c_str()).InitCheck(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(BNode().ReadAttr("x", B_STRING_TYPE, 0, value, 8), B_NO_INIT);
    // A disk without attributes refuses them.
    EXPECT_EQ(BNode("/proc/version").WriteAttr("META:url", B_STRING_TYPE, 0, "x", 1),
              B_UNSUPPORTED);
}

TEST_F(NodeTest, FollowsTheNodeNotTheName) {
    BNode node(In("file").c_str());
    std::filesystem::rename(OnDisk("file"), OnDisk("renamed"));
    MakeFile("file");
    EXPECT_EQ(node.WriteAttr("mark", B_STRING_TYPE, 0, "x", 1), 1);
    EXPECT_EQ(GetFromDisk("user.mark"), "<none>");
}

TEST_F(NodeTest, TypeIsReadWithOrWithoutItsEnd) {
    BNode node(In("file").c_str());
    BNodeInfo info(&node);
    char type[B_MIME_TYPE_LENGTH];
    EXPECT_EQ(info.GetType(type), B_ENTRY_NOT_FOUND);
    for (const std::string& value : {std::string("text/plain"), std::string("text/plain\0", 11)}) {
        SetOnDisk("user.mime_type", value);
        ASSERT_EQ(info.GetType(type), B_OK);
        EXPECT_STREQ(type, "text/plain");
    }
    SetOnDisk("user.mime_type", "");
    EXPECT_EQ(info.GetType(type), B_BAD_DATA);
    SetOnDisk("user.mime_type", std::string(B_MIME_TYPE_LENGTH, 'x'));
    EXPECT_EQ(info.GetType(type), B_BAD_DATA);
    ASSERT_EQ(info.SetType("application/x-vnd.Be-bookmark"), B_OK);
    EXPECT_EQ(GetFromDisk("user.mime_type"), "application/x-vnd.Be-bookmark");
}

TEST_F(NodeTest, FileIsWrittenAndReplacesAnotherInOneStep) {
    BFile file(In("file.new").c_str(), B_READ_WRITE | B_CREATE_FILE | B_ERASE_FILE);
    ASSERT_EQ(file.InitCheck(), B_OK);
    EXPECT_EQ(file.Write("0123", 4), 4);
    EXPECT_EQ(file.WriteAttr("mark", B_STRING_TYPE, 0, "x", 1), 1);
    EXPECT_EQ(file.Sync(), B_OK);
    ASSERT_EQ(BEntry(In("file.new").c_str()).Rename("file", true), B_OK);
    EXPECT_EQ(GetFromDisk("user.mark"), "x");
    char text[8] = {};
    EXPECT_EQ(BFile(In("file").c_str(), B_READ_ONLY).Read(text, sizeof(text)), 4);
    EXPECT_STREQ(text, "0123");
}

TEST_F(NodeTest, OpenModesAreKept) {
    MakeFile("text", "text");
    off_t size = 0;
    EXPECT_EQ(BFile(In("none").c_str(), B_READ_ONLY).InitCheck(), B_ENTRY_NOT_FOUND);
    BFile file;
    EXPECT_EQ(file.SetTo(In("text").c_str(), B_READ_WRITE | B_CREATE_FILE | B_FAIL_IF_EXISTS),
              B_FILE_EXISTS);
    ASSERT_EQ(file.SetTo(In("text").c_str(), B_READ_ONLY | B_CREATE_FILE), B_OK);
    ASSERT_EQ(file.GetSize(&size), B_OK);
    EXPECT_EQ(size, 4);
    EXPECT_LT(file.Write("x", 1), 0);
    ASSERT_EQ(BFile(In("text").c_str(), B_READ_WRITE | B_ERASE_FILE).InitCheck(), B_OK);
    ASSERT_EQ(file.GetSize(&size), B_OK);
    EXPECT_EQ(size, 0);
}

} // namespace test

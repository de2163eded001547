#include "kits/storage/Path.h"

#include "kits/storage/Entry.h"
#include "tests/kits/storage/StorageFixture.h"

namespace test {

class PathTest : public StorageTest {};

TEST_F(PathTest, IsPlainAndAbsolute) {
    EXPECT_STREQ(BPath("//a/./b/", "c//d").Path(), "/a/b/c/d");
    EXPECT_STREQ(BPath("/").Path(), "/");
    EXPECT_STREQ(BPath("/").Leaf(), "");
    EXPECT_STREQ(BPath("/a/b - c").Leaf(), "b - c");
}

TEST_F(PathTest, RefusesWhatIsNoPath) {
    EXPECT_EQ(BPath().InitCheck(), B_NO_INIT);
    EXPECT_EQ(BPath().Path(), nullptr);
    EXPECT_EQ(BPath("").InitCheck(), B_BAD_VALUE);
    EXPECT_EQ(BPath("/a", "/b").InitCheck(), B_BAD_VALUE);
    BPath path("/a");
    EXPECT_EQ(path.Append("/b"), B_BAD_VALUE);
    EXPECT_STREQ(path.Path(), "/a");
    EXPECT_EQ(BPath("/").GetParent(&path), B_ENTRY_NOT_FOUND);
}

TEST_F(PathTest, ParentComponentIsThatOfTheLinksTarget) {
    MakeFolder("folder");
    MakeFolder("folder/inner");
    MakeLink("link", "folder/inner");
    EXPECT_STREQ(BPath(In("link/../x").c_str()).Path(), In("folder/x").c_str());
    EXPECT_STREQ(BPath(In("link/..").c_str()).Path(), In("folder").c_str());
    EXPECT_EQ(BPath(In("missing/../x").c_str()).InitCheck(), B_ENTRY_NOT_FOUND);
}

} // namespace test

#include "kits/storage/Directory.h"

#include <sys/stat.h>

#include <map>

#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"
#include "tests/kits/storage/StorageFixture.h"

namespace test {

class DirectoryTest : public StorageTest {
protected:
    DirectoryTest() { MakeFolder("folder"); }

    // Name and kind of all entries; "-" for a link that leads nowhere.
    std::map<std::string, std::string> Walk(bool traverse) {
        BDirectory directory(In("folder").c_str());
        std::map<std::string, std::string> entries;
        BEntry entry;
        while (directory.GetNextEntry(&entry, traverse) == B_OK) {
            BPath path(&entry);
            entries[path.InitCheck() == B_OK ? path.Leaf() : "-"] = entry.IsFile()        ? "file"
                                                                    : entry.IsDirectory() ? "folder"
                                                                    : entry.IsSymLink()   ? "link"
                                                                                          : "other";
        }
        EXPECT_EQ(entry.InitCheck(), B_NO_INIT);
        return entries;
    }
};

TEST_F(DirectoryTest, WalkSeesEveryEntryOnce) {
    MakeFile("folder/file");
    MakeFolder("folder/inner");
    MakeFile("target");
    MakeLink("folder/link", "../target");
    MakeLink("folder/dangling", "nowhere");
    MakeLink("folder/loop", "loop");
    ASSERT_EQ(mkfifo(OnDisk("folder/fifo").c_str(), 0666), 0);
    std::string odd = "\xff\n" + std::string(200, 'x');
    MakeFile("folder/" + odd);
    std::map<std::string, std::string> expected = {
        {"file", "file"}, {"inner", "folder"}, {"link", "link"}, {"dangling", "link"},
        {"loop", "link"}, {"fifo", "other"},   {odd, "file"}};
    EXPECT_EQ(Walk(false), expected);
    expected = {{"file", "file"},  {"inner", "folder"}, {"target", "file"},
                {"fifo", "other"}, {odd, "file"},       {"-", "other"}};
    EXPECT_EQ(Walk(true), expected);
}

TEST_F(DirectoryTest, OnlyDirectoriesAreOpened) {
    MakeFile("file");
    MakeLink("link", "folder");
    MakeLink("loop", "loop");
    EXPECT_EQ(BDirectory(In("file").c_str()).InitCheck(), B_NOT_A_DIRECTORY);
    EXPECT_EQ(BDirectory(In("none").c_str()).InitCheck(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(BDirectory(In("loop").c_str()).InitCheck(), B_LINK_LIMIT);
    EXPECT_EQ(BDirectory(In("link").c_str()).InitCheck(), B_OK);
    BEntry entry;
    BDirectory directory(In("folder").c_str());
    EXPECT_EQ(directory.SetTo(In("none").c_str()), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(directory.GetNextEntry(&entry), B_ENTRY_NOT_FOUND) << "nothing of the old one";
}

TEST_F(DirectoryTest, IsMadeWithThoseOnTheWay) {
    for (int i = 0; i < 2; i++)
        EXPECT_EQ(create_directory(In("config/settings/a/b").c_str(), 0777), B_OK);
    EXPECT_TRUE(std::filesystem::is_directory(fHome.Config() / "a/b"));
    MakeFile("file");
    EXPECT_EQ(create_directory(In("file").c_str(), 0777), B_NOT_A_DIRECTORY);
    EXPECT_EQ(create_directory(In("file/x").c_str(), 0777), B_NOT_A_DIRECTORY);
}

} // namespace test

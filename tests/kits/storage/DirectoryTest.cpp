#include "kits/storage/Directory.h"

#include <sys/stat.h>

#include <map>

#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
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
            char name[B_FILE_NAME_LENGTH] = "-";
            entry.GetName(name);
            entries[name] = entry.IsFile()        ? "file"
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
    EXPECT_EQ(BDirectory().GetNextEntry(&entry), B_NO_INIT);
    BDirectory directory(In("folder").c_str());
    EXPECT_EQ(directory.SetTo(In("none").c_str()), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(directory.GetNextEntry(&entry), B_ENTRY_NOT_FOUND) << "nothing of the old one";
}

TEST_F(DirectoryTest, MakesFilesAndDirectories) {
    BDirectory directory(In("folder").c_str());
    BDirectory inner;
    ASSERT_EQ(directory.CreateDirectory("inner", &inner), B_OK);
    EXPECT_EQ(directory.CreateDirectory("inner", nullptr), B_FILE_EXISTS);
    BFile file;
    ASSERT_EQ(inner.CreateFile("file", &file), B_OK);
    EXPECT_EQ(file.Write("text", 4), 4);
    EXPECT_EQ(inner.CreateFile("file", nullptr, true), B_FILE_EXISTS);
    EXPECT_EQ(std::filesystem::file_size(OnDisk("folder/inner/file")), 4u);
    EXPECT_EQ(inner.CreateFile("file", nullptr), B_OK);
    EXPECT_EQ(std::filesystem::file_size(OnDisk("folder/inner/file")), 0u);
    EXPECT_EQ(create_directory(In("config/settings/a/b").c_str(), 0777), B_OK);
    EXPECT_TRUE(std::filesystem::is_directory(fHome.Config() / "a/b"));
    EXPECT_EQ(create_directory(In("config/settings/a/b").c_str(), 0777), B_OK);
    MakeFile("file");
    EXPECT_EQ(create_directory(In("file").c_str(), 0777), B_NOT_A_DIRECTORY);
    EXPECT_EQ(create_directory(In("file/x").c_str(), 0777), B_NOT_A_DIRECTORY);
}

} // namespace test

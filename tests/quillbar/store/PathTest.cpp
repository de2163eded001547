#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/quillbar/store/Store.h"

namespace {

// What a folder makes of its directory when it reads all of it.
class PathTest : public StoreTest {
protected:
    fs::path fFolder = Root() / "3 - News";
};

TEST_F(PathTest, FilesFillTheSlotsOfTheirDigits) {
    test::MakeBookmark(fFolder / "0 - First", "http://first");
    test::MakeBookmark(fFolder / "9 - Last", "http://last");
    test::MakeBookmark(fFolder / "no number", "http://x");
    test::MakeBookmark(fFolder / "12 - two digits", "http://x");
    fs::create_directories(fFolder / "5 - a directory");
    test::MakeBookmark(fFolder / "sub" / "6 - deeper", "http://x");
    ASSERT_EQ(mkfifo((fFolder / "7 - fifo").c_str(), 0600), 0);
    Start();
    std::vector<std::string> expected(10, kEmptyLabel);
    expected[0] = "0 - First";
    expected[9] = "9 - Last";
    EXPECT_EQ(Labels(3), expected);
    EXPECT_EQ(Title(3), "3 - News");
    EXPECT_EQ(Url(3, 9), "http://last");
    EXPECT_EQ(Code(3, 0), static_cast<uint32>('qbf3'));
    EXPECT_EQ(Code(3, 1), static_cast<uint32>('qbAh'));
}

TEST_F(PathTest, OneOfSeveralFilesWithADigitFillsTheSlot) {
    for (const char* name : {"4 - a", "4 - b", "4 - c"})
        test::MakeBookmark(fFolder / name, std::string("http://") + name);
    // The disk's own order decides.
    std::string first;
    for (const auto& entry : fs::directory_iterator(fFolder)) {
        first = entry.path().filename();
        break;
    }
    Start();
    EXPECT_EQ(Label(3, 4), first);
}

TEST_F(PathTest, LinksCountAsWhatTheyPointTo) {
    const fs::path elsewhere = fHome.Path() / "elsewhere";
    test::MakeBookmark(elsewhere / "6 - target", "http://target");
    fs::create_directories(fFolder);
    fs::create_symlink("nowhere", fFolder / "0 - dangling");
    fs::create_symlink("1 - loop", fFolder / "1 - loop");
    fs::create_symlink(elsewhere / "6 - target", fFolder / "2 - link");
    fs::create_symlink(elsewhere, fFolder / "3 - link to a directory");
    test::MakeBookmark(fFolder / "8 - after", "http://after");
    Start();
    std::vector<std::string> expected(10, kEmptyLabel);
    expected[6] = "6 - target";
    expected[8] = "8 - after";
    EXPECT_EQ(Labels(3), expected);
}

TEST_F(PathTest, ForeignFilesInGreatNumberAreReadOver) {
    fs::create_directories(fFolder);
    for (int i = 0; i < 20'000; ++i)
        close(creat((fFolder / ("foreign" + std::to_string(i))).c_str(), 0600));
    test::MakeBookmark(fFolder / "5 - needle", "http://needle");
    Start();
    EXPECT_EQ(Label(3, 5), "5 - needle");
}

} // namespace

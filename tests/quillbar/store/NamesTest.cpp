#include "tests/quillbar/store/Store.h"

namespace {

TEST(Names, NumberIsOneLeadingDigitBeforeAHyphen) {
    const std::pair<const char*, int> cases[] = {
        {"/x/0 - a", 0}, {"/x/9 -", 9},       {"/x/3x - a", 3},    {"/x/12 - News", -1},
        {"/x/3 a", -1},  {"/x/ 3 - a", -1},   {"/x/-3 News", -1},  {"/x - y/3", -1},
        {"/", -1},       {"/3 - a/4 - b", 4}, {"/x/\xff - a", -1},
    };
    for (const auto& [path, number] : cases)
        EXPECT_EQ(GetNumber(path), number) << path;
}

TEST(Names, NameFollowsTheFirstHyphenAndOneBlank) {
    const std::pair<const char*, const char*> cases[] = {
        {"/x/3 - ", ""},           {"/x/3-News", "News"},        {"/x/3 - a - b", "a - b"},
        {"/x/3 -  News", " News"}, {"/x/Misc - Links", "Links"}, {"/x - y/News", ""}};
    for (const auto& [path, name] : cases)
        EXPECT_STREQ(GetName(path).String(), name) << path;
}

TEST(Names, LongUrlIsCutToFiftyBytes) {
    const std::string fifty(50, 'u');
    EXPECT_STREQ(ParseURL(fifty.c_str()).String(), fifty.c_str());
    EXPECT_EQ(ParseURL((fifty + "v").c_str()).String(), fifty.substr(4) + "....");
}

class FindItemTest : public StoreTest {};

TEST_F(FindItemTest, OnlyTypedFilesAnswerForASlot) {
    EXPECT_STREQ(FindItem(1, 0).String(), "");
    const fs::path folder = Root() / "0 - x";
    fs::create_directories(folder / "1 - directory");
    test::SetAttribute(folder / "1 - directory", "mime_type", test::kBookmarkType);
    test::MakeBookmark(folder / "2 - plain", "http://x");
    test::SetAttribute(folder / "2 - plain", "mime_type", "text/plain");
    test::MakeBookmark(folder / "3 - loud", "http://x");
    test::SetAttribute(folder / "3 - loud", "mime_type", "Application/X-VND.Be-Bookmark");
    fs::create_symlink(folder / "3 - loud", folder / "4 - link");
    const std::string root = kBookmarkRoot;
    const std::string expected[] = {root + "/0 - x", "", "", "", root + "/0 - x/3 - loud", ""};
    for (int slot = 0; slot < 6; ++slot)
        EXPECT_EQ(FindItem(1, slot).String(), expected[slot]);
    test::MakeBookmark(folder / "2 - real", "http://x");
    EXPECT_EQ(FindItem(1, 3).String(), root + "/0 - x/2 - real");
    EXPECT_STREQ(FindItem(2, 0).String(), "");
}

} // namespace

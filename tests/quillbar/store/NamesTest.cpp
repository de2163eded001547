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

} // namespace

#include <gtest/gtest.h>

#include "kits/support/String.h"

namespace {

TEST(String, IsBuiltFromTextAndNumbers) {
    BString string("slot ");
    string << 4 << '/' << static_cast<uint64>(UINT64_MAX) << " " << static_cast<int64>(INT64_MIN);
    EXPECT_STREQ("slot 4/18446744073709551615 -9223372036854775808", string.String());
    EXPECT_STREQ("1.50", (BString() << 1.5f).String());
    EXPECT_STREQ("3 - News", BString().SetToFormat("%d - %s", 3, "News").String());
    EXPECT_EQ(5000, BString().SetToFormat("%5000d", 1).Length());
}

TEST(String, CountsBytes) {
    EXPECT_EQ(4, BString("h\xc3\xa9!").Length());
    EXPECT_EQ(2, BString("h\xc3\xa9!", 2).Length());
    EXPECT_STREQ("ab", BString("ab", 100).String());
    EXPECT_STREQ("", BString(nullptr).String());
}

TEST(String, TakesPartsOfItself) {
    BString string("abcdef");
    string.SetTo(string.String() + 2);
    EXPECT_STREQ("cdef", string.String());
    string.CopyInto(string, 1, 2);
    EXPECT_STREQ("de", string.String());
    string += string;
    EXPECT_STREQ("dede", string.String());
}

TEST(String, IgnoresPlacesOutsideIt) {
    BString string("abc");
    EXPECT_STREQ("abc", string.Truncate(9).String());
    EXPECT_STREQ("abc", string.Remove(7, 1).Remove(-1, 1).String());
    EXPECT_EQ('\0', string[3]);
    EXPECT_EQ('\0', string[-1]);
    BString part("old");
    EXPECT_STREQ("", string.CopyInto(part, 3, 1).String());
    EXPECT_STREQ("c", string.CopyInto(part, 2, 50).String());
    EXPECT_STREQ("ab", string.Truncate(2).String());
    EXPECT_STREQ("", string.Truncate(-3).String());
}

TEST(String, FindsFromAPlaceOn) {
    const BString path("/3 - a - b");
    EXPECT_EQ(3, path.FindFirst('-'));
    EXPECT_EQ(7, path.FindFirst(" - ", 4) + 1);
    EXPECT_EQ(7, path.FindLast('-'));
    EXPECT_EQ(B_ERROR, path.FindFirst("x"));
    EXPECT_EQ(B_ERROR, path.FindFirst('-', 99));
    EXPECT_EQ(B_ERROR, path.FindFirst('-', -1));
}

TEST(String, ComparesBytesOrIgnoresTheCaseOfLetters) {
    EXPECT_LT(BString("a").Compare("b"), 0);
    EXPECT_LT(BString("Z"), BString("a"));
    EXPECT_LT(BString("z"), BString("\xc3\xa9"));
    EXPECT_EQ(0, BString("Text/HTML").ICompare("text/html"));
    EXPECT_EQ(0, BString("http://x").ICompare("HTTP", 4));
    EXPECT_NE(0, BString("http").Compare("http://", 7));
    EXPECT_TRUE(BString("a") == "a");
}

} // namespace

#include <gtest/gtest.h>

#include "kits/support/String.h"

namespace {

TEST(String, TakesPartsOfItself) {
    EXPECT_EQ(5000, BString().SetToFormat("%5000d", 1).Length());
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
    EXPECT_STREQ("abc", BString("abc", 100).String());
    EXPECT_STREQ("", BString(nullptr).String());
    EXPECT_EQ(0, string.ICompare("ABx", 2));
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

} // namespace

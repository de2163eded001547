#include <gtest/gtest.h>

#include "kits/support/String.h"

namespace {

TEST(String, TakesPartsOfItselfAndIgnoresPlacesOutside) {
    BString string("abcdef");
    string.SetTo(string.String() + 2);
    string += string;
    EXPECT_STREQ("cdefcdef", string.String());
    EXPECT_STREQ("cdef", string.Remove(4, 99).Remove(7, 1).Remove(-1, 1).String());
    EXPECT_EQ('\0', string[4]);
    EXPECT_EQ('\0', string[-1]);
    EXPECT_STREQ("abc", BString("abc", 100).String());
    EXPECT_STREQ("", BString(nullptr).String());
    EXPECT_EQ(2, string.FindFirst("ef", 1));
    EXPECT_EQ(B_ERROR, string.FindFirst('c', 99));
    EXPECT_EQ(B_ERROR, string.FindFirst('c', -1));
}

} // namespace

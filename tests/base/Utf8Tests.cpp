#include <gtest/gtest.h>

#include "base/Utf8.h"

namespace {

TEST(Utf8, TakesEachCharacterInItsOneForm) {
    for (std::string_view text :
         {std::string_view("a"), std::string_view("\0", 1), std::string_view("\xc3\xa4"),
          std::string_view("\xe2\x82\xac"), std::string_view("\xf0\x9f\x98\x80")}) {
        EXPECT_EQ(FirstCharacter(text).length, text.size());
        EXPECT_TRUE(IsUtf8(text));
    }
    // Cut off, without a beginning, longer than needed, half a pair of units, past the last.
    for (const char* text :
         {"\xc3", "\xe2\x82z", "\xff", "\x80", "\xc0\xaf", "\xc1\xbf", "\xe0\x80\x8a",
          "\xf0\x80\x80\x8a", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80"}) {
        EXPECT_EQ(FirstCharacter(text).code, kNoCharacter) << text;
        EXPECT_EQ(FirstCharacter(text).length, 1u) << text;
        EXPECT_FALSE(IsUtf8(std::string("a") + text + "a")) << text;
    }
}

TEST(Utf8, OneLineHasNoControlCharacters) {
    EXPECT_EQ(OneLineOf("\r\na\r\n\nb\tc\x01"
                        "d\xff"
                        "e\xe2\x80\xa8 \n\t"),
              " a  b cd\xef\xbf\xbd"
              "e  ");
    EXPECT_EQ(OneLineOf("\n\xe0\x80\x8a"),
              std::string(" ") + "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
}

TEST(Utf8, ToAndFromOtherForms) {
    const std::u16string units = u"a\u00e4\U0001f600";
    EXPECT_EQ(Utf16Of("a\xff\xc3\xa4\xe0\x80\x8a\xf0\x9f\x98\x80"),
              std::string(reinterpret_cast<const char*>(units.data()), units.size() * 2));
    EXPECT_EQ(Latin1FromUtf8("gr\xc3\xbc\xc3\x9f \xe2\x82\xac"), "gr\xfc\xdf ?");
    EXPECT_EQ(Utf8FromLatin1("gr\xfc\xdf"), "gr\xc3\xbc\xc3\x9f");
}

} // namespace

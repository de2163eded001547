#include "tests/kits/interface/InterfaceTest.h"

#include "kits/interface/text/TextView.h"

namespace {

class TextViewTest : public InterfaceTest {
protected:
    TextViewTest()
        : text(BRect(0, 0, 199, 299), "text", BRect(0, 0, 199, 0), B_FOLLOW_NONE, B_WILL_DRAW) {}

    BTextView text;
};

} // namespace

TEST_F(TextViewTest, WrapsAtWordsAndAtNewLinesOrOnlyThere) {
    text.SetText("a line that is wider than two hundred pixels of a text rectangle\nii\n");
    const int32 lines = text.CountLines();
    EXPECT_GE(lines, 4);
    EXPECT_LE(lines, 6);
    text.SetWordWrap(false);
    EXPECT_EQ(text.CountLines(), 3);
    EXPECT_GT(text.LineWidth(0), 200);
    EXPECT_GT(text.LineWidth(1), 0);
    EXPECT_LT(text.LineWidth(1), 20);
    EXPECT_EQ(text.LineWidth(2), 0);
    EXPECT_EQ(text.LineWidth(3), 0);
    EXPECT_FLOAT_EQ(text.TextHeight(0, 2000000), text.TextHeight());
    EXPECT_FLOAT_EQ(text.TextHeight(1, 2) * 3, text.TextHeight() * 2);
}

TEST_F(TextViewTest, BreaksWordsThatFitNoLineWhateverTheirBytes) {
    text.SetText(std::string(255, 'm').c_str());
    EXPECT_GT(text.CountLines(), 5);
    text.SetText(std::string(300, '\x80').c_str());
    EXPECT_GT(text.CountLines(), 5);
    text.SetText(std::string(300, ' ').c_str());
    EXPECT_GE(text.CountLines(), 1);
    text.SetTextRect({0, 0, 0, 0});
    text.SetText("narrow\xc3\xa4");
    EXPECT_EQ(text.CountLines(), 7);
}

TEST_F(TextViewTest, StylesARangeOfAStylableText) {
    text.SetText("ERROR:\n\nSomething");
    text.SetStylable(true);
    const float plain = text.TextHeight();
    BFont font;
    text.GetFont(&font);
    const float size = font.Size();
    font.SetSize(16);
    const rgb_color red{255, 0, 0, 255};
    text.SetFontAndColor(0, 6, &font, B_FONT_ALL, &red);

    rgb_color color;
    text.GetFontAndColor(5, &font, &color);
    EXPECT_EQ(font.Size(), 16);
    EXPECT_EQ(color, red);
    text.GetFontAndColor(6, &font, &color);
    EXPECT_EQ(font.Size(), size);
    EXPECT_NE(color, red);
    EXPECT_GT(text.TextHeight(), plain);
    text.SetFontAndColor(-5, 1000, &font, B_FONT_ALL, &red);
    EXPECT_EQ(text.TextHeight(), plain);
}

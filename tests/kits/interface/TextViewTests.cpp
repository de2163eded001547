#include "kits/interface/text/TextView.h"

#include "tests/kits/interface/InterfaceTest.h"

namespace {

using TextViewTest = InterfaceTest;

TEST_F(TextViewTest, WrapsAnyBytesAtWordsOrAtNewLinesOnly) {
    BTextView text{BRect(0, 0, 199, 299), "text", BRect(0, 0, 199, 0), B_FOLLOW_NONE, B_WILL_DRAW};
    text.SetText("a line that is wider than two hundred pixels of a text rectangle\nii\n");
    EXPECT_GE(text.CountLines(), 4);
    EXPECT_LE(text.CountLines(), 6);
    text.SetWordWrap(false);
    EXPECT_EQ(text.CountLines(), 3);
    EXPECT_GT(text.LineWidth(0), 200);
    EXPECT_EQ(text.LineWidth(3), 0);
    EXPECT_FLOAT_EQ(text.TextHeight(0, 2000000), text.TextHeight());
    text.SetWordWrap(true);
    for (char byte : {'m', '\x80'}) {
        text.SetText(std::string(300, byte).c_str());
        EXPECT_GT(text.CountLines(), 5) << byte;
    }
    text.SetTextRect({0, 0, 0, 0});
    text.SetText("narrow\xc3\xa4");
    EXPECT_EQ(text.CountLines(), 7);
}

TEST_F(TextViewTest, HigherThanTheViewItEndsWithAnEllipsis) {
    auto* window = new RecordingWindow(BRect(100, 100, 299, 199));
    auto* view = new BTextView(BRect(0, 0, 199, 39), "text", BRect(0, 0, 199, 0), B_FOLLOW_NONE,
                               B_WILL_DRAW);
    window->AddChild(view);
    Show(window);
    const auto drawn = [&](const char* shown) {
        WithLock(window, [&] { view->SetText(shown); });
        window->Settle();
        return desk.Grab({100, 100, 200, 60});
    };
    const test::Picture cut = drawn("one\ntwo\nthree\nfour\nfive");
    EXPECT_EQ(cut, drawn("one\ntwo\xe2\x80\xa6"));
    EXPECT_NE(cut, drawn("one\ntwo"));
}

} // namespace

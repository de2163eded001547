#include <cmath>
#include <thread>

#include <gmock/gmock.h>

#include "host/draw/TextLayouts.h"
#include "host/draw/TextStops.h"
#include "tests/host/draw/Pixels.h"

namespace host {
namespace {

constexpr std::string_view kEllipsis = "\xe2\x80\xa6";

std::vector<uint32> Drawn(const FontSpec& font, std::string_view text, double scale) {
    Canvas canvas(300, 60, scale);
    canvas.DrawText(font, text, {10, 30}, kBlack);
    return Copy(canvas.Picture());
}

TEST(VisibleText, KeepsToOneLineOfUtf8) {
    EXPECT_EQ(VisibleText(std::string_view("a\nb\0\xc3\xa4\xff\x7f \t\xe2\x80\xa8", 13)),
              "a\xc2\xb7"
              "b\xc2\xb7\xc3\xa4\xef\xbf\xbd\xc2\xb7 \xc2\xb7\xc2\xb7");
}

TEST(VisibleText, IsBoundedBetweenCharacters) {
    std::string text;
    for (int i = 0; i < 1'000'000; i++)
        text += "\xe2\x82\xac";
    std::string visible = VisibleText(text);
    EXPECT_LT(visible.size(), 10'000u);
    EXPECT_EQ(visible, text.substr(0, visible.size() / 3 * 3));
}

class TextAtScale : public testing::TestWithParam<double> {};

INSTANTIATE_TEST_SUITE_P(Scales, TextAtScale, testing::Values(1, 1.25, 1.5, 2));

TEST_P(TextAtScale, MeasuresWhatIsDrawn) {
    double scale = GetParam();
    for (bool bold : {false, true}) {
        FontSpec font{12, bold};
        // No side bearing wider than a pixel at either end.
        std::string text = "H0123456789 mwiH";
        Canvas canvas(600, 100, scale);
        canvas.DrawText(font, text, {10, 30}, kBlack);
        PixelRect ink = InkOf(canvas.Picture());
        double width = MeasureText(font, text, scale) * scale;
        double slack = 2 * scale;
        EXPECT_NEAR(ink.left, 10 * scale, slack);
        EXPECT_NEAR(ink.right, 10 * scale + width, slack);
        EXPECT_LE(ink.right, std::ceil(10 * scale + width));
    }
}

TEST_P(TextAtScale, GlyphBoxesHoldTheInkOfEachCharacter) {
    double scale = GetParam();
    FontSpec font{14};
    auto boxes = MeasureGlyphs(font, "xg \xc3\x84", scale);
    ASSERT_EQ(boxes.size(), 4u);
    EXPECT_FALSE(boxes[2].IsValid()) << "a space has no ink";
    for (auto [index, text] : {std::pair{0, "x"}, {1, "g"}, {3, "\xc3\x84"}}) {
        Canvas canvas(100, 100, scale);
        canvas.DrawText(font, text, {10, 30}, kBlack);
        PixelRect ink = InkOf(canvas.Picture());
        BRect box = boxes[index].OffsetByCopy(10, 30);
        // The boxes are whole logical pixels around the ink, and the place of the baseline is
        // rounded: a device pixel or two.
        double slack = scale + 1;
        EXPECT_NEAR(ink.top, box.top * scale, slack);
        EXPECT_NEAR(ink.bottom, (box.bottom + 1) * scale, slack);
        EXPECT_NEAR(ink.left, box.left * scale, slack);
        EXPECT_NEAR(ink.right, (box.right + 1) * scale, slack);
    }
    EXPECT_LT(boxes[0].bottom, 0) << "x stands on the baseline";
    EXPECT_GT(boxes[1].bottom, 0) << "g goes below it";
}

TEST_P(TextAtScale, TruncatesToTheWidth) {
    double scale = GetParam();
    FontSpec font{12};
    std::string text = "\xc3\xa4 s\xc3\xb6mewh\xc3\xa9t long label";
    float whole = MeasureText(font, text, scale);
    EXPECT_EQ(TruncateText(font, text, whole, scale), text);
    std::size_t longest = 0;
    for (float width = MeasureText(font, kEllipsis, scale); width < whole; width++) {
        std::string cut = TruncateText(font, text, width, scale);
        EXPECT_LE(MeasureText(font, cut, scale), width);
        ASSERT_TRUE(cut.ends_with(kEllipsis));
        std::string kept = cut.substr(0, cut.size() - kEllipsis.size());
        EXPECT_TRUE(text.starts_with(kept));
        EXPECT_EQ(VisibleText(kept), kept) << "a character was cut in two";
        EXPECT_GE(kept.size(), longest);
        longest = kept.size();
    }
    EXPECT_GT(longest, text.size() / 2);
    EXPECT_EQ(TruncateText(font, text, 1, scale), "");
}

TEST(Text, WindowsDrawAtTheSameTime) {
    constexpr int kThreads = 4, kRounds = 40;
    auto label = [](int thread, int round) {
        return "Label " + std::to_string(thread) + "." + std::to_string(round);
    };
    std::vector<std::vector<uint32>> pictures(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; i++) {
        threads.emplace_back([&, i] {
            Canvas canvas(300, 60, 1 + i * 0.25);
            const auto prepared = PrepareFont({11, i % 2 == 1}, canvas.Scale());
            for (int round = 0; round <= kRounds; round++) {
                canvas.FillRect({0, 0, 400, 100}, {255, 255, 255});
                FontSpec font{11, round % 2 == 1};
                MeasureFont(font, canvas.Scale());
                MeasureText(font, label(i, round), canvas.Scale());
                canvas.DrawText(font, label(i, round), {10, 30}, kBlack);
            }
            pictures[i] = Copy(canvas.Picture());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < kThreads; i++)
        EXPECT_EQ(pictures[i], Drawn({11}, label(i, kRounds), 1 + i * 0.25)) << i;
}

TEST(TextStops, FollowTheWritingAndTheBytesAsGiven) {
    // Latin, a byte that is no character, a letter with its mark, Hebrew
    const std::string latin = "ab \xff e\xcc\x81 ";
    const std::string text = latin + "\xd7\xa9\xd7\x9c\xd7\x95";
    const TextStops found = MeasureStops({}, text, 1);
    std::vector<int> offsets;
    for (const TextStop& stop : found.stops)
        offsets.push_back(stop.offset);
    EXPECT_THAT(offsets, testing::ElementsAre(0, 1, 2, 3, 4, 5, 8, 9, 11, 13, 15));
    EXPECT_EQ(found.width, MeasureText({}, text, 1));
    for (size_t i = 1; i < 7; i++)
        EXPECT_EQ(found.stops[i].x, found.stops[i - 1].farX) << i;
    EXPECT_EQ(found.stops[7].x, found.width) << "the first Hebrew letter is the rightmost";
    EXPECT_EQ(found.stops[8].x, found.stops[7].farX);
    EXPECT_LT(found.stops[8].x, found.stops[7].x);
    EXPECT_EQ(found.stops[9].farX, found.stops[10].x);
    EXPECT_EQ(found.stops[9].farX, found.stops[6].farX) << "the last one follows the Latin";
    EXPECT_TRUE(found.stops[0].startsWord && found.stops[2].endsWord && !found.stops[1].endsWord);

    EXPECT_EQ(MeasureStops({}, "", 1).stops.size(), 1u);
}

} // namespace
} // namespace host

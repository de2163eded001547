// Pixels: where shapes and texts land at whole and fractional scales, and input out of all bounds.

#include <cmath>
#include <future>
#include <limits>

#include <gmock/gmock.h>

#include "host/draw/Canvas.h"
#include "host/draw/TextLayouts.h"

namespace host {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr rgb_color kBlack{0, 0, 0};
constexpr rgb_color kRed{255, 0, 0};
constexpr rgb_color kBlue{0, 0, 255};
constexpr uint32 kWhitePixel = 0xffffff, kRedPixel = 0xff0000, kBluePixel = 0x0000ff;

uint32 PixelAt(const Image& image, int x, int y) {
    return image.At(x, y) & 0xffffff;
}

std::vector<uint32> PixelsOf(const Image& image, const PixelRect& part) {
    std::vector<uint32> pixels;
    for (int y = part.top; y < part.bottom; y++)
        for (int x = part.left; x < part.right; x++)
            pixels.push_back(PixelAt(image, x, y));
    return pixels;
}

// The smallest rectangle around all pixels that are not white.
PixelRect InkOf(const Image& image) {
    PixelRect ink{image.width, image.height, 0, 0};
    for (int y = 0; y < image.height; y++)
        for (int x = 0; x < image.width; x++)
            if (PixelAt(image, x, y) != kWhitePixel)
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                       std::max(ink.bottom, y + 1)};
    return ink;
}

class AtScale : public testing::TestWithParam<double> {
protected:
    Canvas canvas{200, 100, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Scales, AtScale, testing::Values(1, 1.25, 1.75, 2));

TEST_P(AtScale, ShapesMeetWithoutHoleOverlapOrShade) {
    constexpr int kTiles = 7, kTile = 3;
    const PixelRect all = canvas.Snap({0, 0, kTiles * kTile - 1, kTiles * kTile - 1});
    int covered = 0;
    for (int i = 0; i < kTiles * kTiles; i++) {
        const int row = i / kTiles;
        const BRect tile =
            BRect(0, 0, kTile - 1, kTile - 1).OffsetByCopy(i % kTiles * kTile, row * kTile);
        canvas.FillRect(tile.InsetByCopy(1, 1), kBlue);
        canvas.StrokeRect(tile, kRed);
        const PixelRect snapped = canvas.Snap(tile);
        covered += snapped.Width() * snapped.Height();
    }
    EXPECT_EQ(covered, all.Width() * all.Height());
    EXPECT_EQ(InkOf(canvas.Picture()), all);
    EXPECT_THAT(PixelsOf(canvas.Picture(), all), Each(testing::AnyOf(kRedPixel, kBluePixel)));
}

TEST_P(AtScale, LinesAreUnbroken) {
    const BPoint from(3, 4), to(30, 21);
    canvas.StrokeLine(to, from, kRed);
    const PixelRect first = canvas.Snap({from, from}), last = canvas.Snap({to, to});
    const Image picture = canvas.Picture();
    EXPECT_EQ(InkOf(picture), (PixelRect{first.left, first.top, last.right, last.bottom}));
    for (int x = first.left; x < last.right; x++)
        EXPECT_THAT(PixelsOf(picture, {x, first.top, x + 1, last.bottom}),
                    testing::Contains(kRedPixel));
}

TEST_P(AtScale, TextMeasuresAsItIsDrawn) {
    const double scale = GetParam();
    const FontSpec font{12, true};
    // No side bearing is wider than a pixel at either end.
    const std::string text = "H0\xc3\x84 gH";
    canvas.DrawText(font, text, {10, 30}, kBlack);
    const PixelRect ink = InkOf(canvas.Picture());
    const PixelRect box = canvas.Snap(MeasureInk(font, text, scale).OffsetByCopy(10, 30));
    // The box is whole logical pixels around the ink, and the baseline's place is rounded.
    for (int PixelRect::*edge :
         {&PixelRect::left, &PixelRect::top, &PixelRect::right, &PixelRect::bottom})
        EXPECT_NEAR(ink.*edge, box.*edge, scale + 1);
    const double right = 10 * scale + MeasureText(font, text, scale) * scale;
    EXPECT_NEAR(ink.right, right, 2 * scale);
    EXPECT_LE(ink.right, std::ceil(right));
}

TEST_P(AtScale, TruncatedTextKeepsToTheWidthAndToWholeCharacters) {
    const FontSpec font{12};
    const std::string text = "\xc3\xa4 s\xc3\xb6mewh\xc3\xa9t long label";
    const float whole = MeasureText(font, text, GetParam());
    EXPECT_EQ(TruncateText(font, text, whole, GetParam()), text);
    EXPECT_EQ(TruncateText(font, text, 1, GetParam()), "");
    std::string kept;
    for (float width = 15; width < whole; width++) {
        const std::string cut = TruncateText(font, text, width, GetParam());
        EXPECT_LE(MeasureText(font, cut, GetParam()), width);
        ASSERT_TRUE(cut.ends_with(kEllipsis));
        kept = cut.substr(0, cut.size() - kEllipsis.size());
        EXPECT_TRUE(text.starts_with(kept));
        EXPECT_EQ(VisibleText(kept), kept) << "a character was cut in two";
    }
    EXPECT_GT(kept.size(), text.size() / 2);
}

TEST(Canvas, BearsPlacesFarOutside) {
    constexpr float kHuge = std::numeric_limits<float>::max();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    Canvas canvas(6, 3, 1);
    canvas.Resize(1, 1 << 30);
    EXPECT_EQ(canvas.Picture().height, 16384);
    canvas.Resize(6, 3);
    for (const BRect rect : {BRect(kHuge, kHuge, kHuge, kHuge), {kNan, 0, kNan, 2}, {3, 3, 1, 1}})
        canvas.FillRect(rect, kBlack);
    canvas.FillPolygon({{-kHuge, 100}, {kHuge, 100}, {kHuge, kHuge}}, kBlack);
    canvas.FillEllipse({-kHuge, 50, kHuge, 60}, kBlack);
    canvas.DrawText({kHuge}, "x", {kHuge, kNan}, kBlack);
    EXPECT_TRUE(InkOf(canvas.Picture()).IsEmpty());
    canvas.StrokeLine({-50000, 1}, {50000, 1}, kBlack);
    EXPECT_EQ(InkOf(canvas.Picture()), (PixelRect{0, 1, 6, 2}));
    canvas.FillRect({-kHuge, -kHuge, kHuge, kHuge}, kBlack);
    EXPECT_EQ(InkOf(canvas.Picture()), (PixelRect{0, 0, 6, 3}));
}

TEST(Text, IsShownAsABoundedLineOfUtf8) {
    EXPECT_EQ(VisibleText(std::string_view("a\nb\0\xc3\xa4\xff\x7f \t\xe2\x80\xa8", 13)),
              "a\xc2\xb7"
              "b\xc2\xb7\xc3\xa4\xef\xbf\xbd\xc2\xb7 \xc2\xb7\xc2\xb7");
    std::string text;
    for (int i = 0; i < 1'000'000; i++)
        text += "\xe2\x82\xac";
    const std::string visible = VisibleText(text);
    EXPECT_LT(visible.size(), 10'000u);
    EXPECT_EQ(visible, text.substr(0, visible.size() / 3 * 3));
}

TEST(Text, WindowsDrawAtTheSameTime) {
    const auto draw = [](int window) {
        const auto prepared = PrepareFont({11, window % 2 == 1}, 1 + window * 0.25);
        Canvas canvas(200, 60, 1 + window * 0.25);
        for (int round = 0; round < 40; round++)
            canvas.DrawText({11, round % 2 == 1}, std::to_string(round), {10, 30}, kBlack);
        return PixelsOf(canvas.Picture(), {0, 0, 200, 60});
    };
    std::vector<std::future<std::vector<uint32>>> pictures;
    for (int i = 0; i < 4; i++)
        pictures.push_back(std::async(std::launch::async, draw, i));
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(pictures[i].get(), draw(i)) << i;
}

TEST(Text, StopsFollowTheWritingAndTheBytesAsGiven) {
    // Latin, a byte that is no character, a letter with its mark, Hebrew
    const std::string text = "ab \xff e\xcc\x81 \xd7\xa9\xd7\x9c\xd7\x95";
    const auto [stops, width] = MeasureStops({}, text, 1);
    std::vector<int> offsets;
    for (const TextStop& stop : stops)
        offsets.push_back(stop.offset);
    ASSERT_THAT(offsets, ElementsAre(0, 1, 2, 3, 4, 5, 8, 9, 11, 13, 15));
    EXPECT_EQ(width, MeasureText({}, text, 1));
    for (size_t i = 1; i < 7; i++)
        EXPECT_EQ(stops[i].x, stops[i - 1].farX) << i;
    EXPECT_EQ(stops[7].x, width) << "the first Hebrew letter is the rightmost";
    EXPECT_EQ(stops[8].x, stops[7].farX);
    EXPECT_LT(stops[8].x, stops[7].x);
    EXPECT_EQ(stops[9].farX, stops[6].farX) << "the last one follows the Latin";
    EXPECT_TRUE(stops[0].startsWord && stops[2].endsWord && !stops[1].endsWord);
    EXPECT_EQ(MeasureStops({}, "", 1).stops.size(), 1u);
}

} // namespace
} // namespace host

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include <gmock/gmock.h>

#include "tests/host/draw/Pixels.h"

namespace host {
namespace {

using testing::ElementsAre;

std::vector<std::string> Rows(const Image& image) {
    std::vector<std::string> rows;
    for (int y = 0; y < image.height; y++) {
        std::string row;
        for (int x = 0; x < image.width; x++)
            row += PixelAt(image, x, y) == kWhitePixel ? '.' : '#';
        rows.push_back(row);
    }
    return rows;
}

class CanvasAtScale : public testing::TestWithParam<double> {};

INSTANTIATE_TEST_SUITE_P(Scales, CanvasAtScale, testing::Values(1, 1.25, 1.75, 2));

TEST_P(CanvasAtScale, NeighboursMeetWithoutHoleOrOverlap) {
    constexpr int kTiles = 7, kTile = 3;
    double scale = GetParam();
    int side = static_cast<int>(std::lround(kTiles * kTile * scale));
    Canvas canvas(side, side, scale);
    int covered = 0;
    for (int row = 0; row < kTiles; row++) {
        for (int column = 0; column < kTiles; column++) {
            BRect tile(column * kTile, row * kTile, (column + 1) * kTile - 1,
                       (row + 1) * kTile - 1);
            canvas.FillRect(tile, (row + column) % 2 ? kRed : kBlue);
            PixelRect snapped = canvas.Snap(tile);
            covered += snapped.Width() * snapped.Height();
        }
    }
    EXPECT_THAT(ColorsOf(canvas.Picture()), ElementsAre(kBluePixel, kRedPixel));
    EXPECT_EQ(covered, side * side);
}

TEST_P(CanvasAtScale, FrameAndItsInsideMeet) {
    Canvas canvas(100, 100, GetParam());
    BRect frame(2, 3, 20, 17);
    canvas.StrokeRect(frame, kRed);
    canvas.FillRect(frame.InsetByCopy(1, 1), kBlue);
    PixelRect snapped = canvas.Snap(frame);
    Image picture = canvas.Picture();
    EXPECT_EQ(InkOf(picture), snapped);
    auto pixels = Copy(picture);
    EXPECT_EQ(pixels.size() - std::count(pixels.begin(), pixels.end(), kWhitePixel),
              static_cast<std::size_t>(snapped.Width() * snapped.Height()));
    EXPECT_EQ(PixelAt(picture, snapped.right - 1, snapped.bottom - 1), kRedPixel);
}

TEST_P(CanvasAtScale, LinesAreUnbrokenAndWithoutShades) {
    Canvas straight(100, 100, GetParam());
    straight.StrokeLine({10, 5}, {2, 5}, kRed);
    EXPECT_EQ(InkOf(straight.Picture()), straight.Snap({2, 5, 10, 5}));
    Canvas canvas(120, 120, GetParam());
    BPoint from(3, 4), to(30, 21);
    canvas.StrokeLine(from, to, kRed);
    Image picture = canvas.Picture();
    EXPECT_THAT(ColorsOf(picture), ElementsAre(kRedPixel, kWhitePixel));
    PixelRect first = canvas.Snap({from, from}), last = canvas.Snap({to, to});
    EXPECT_EQ(InkOf(picture), (PixelRect{first.left, first.top, last.right, last.bottom}));
    for (int x = first.left; x < last.right; x++) {
        int inColumn = 0;
        for (int y = first.top; y < last.bottom; y++)
            inColumn += PixelAt(picture, x, y) == kRedPixel;
        EXPECT_GE(inColumn, 1) << "column " << x;
    }
}

TEST(Canvas, PolygonsIncludeTheirOutline) {
    Canvas canvas(9, 5, 1);
    canvas.FillPolygon({{1, 1}, {7, 1}, {4, 4}}, kBlack);
    EXPECT_THAT(Rows(canvas.Picture()), ElementsAre(".........", //
                                                    ".#######.", //
                                                    "..#####..", //
                                                    "...###...", //
                                                    "....#...."));
}

TEST(Canvas, DrawsOnlyInsideTheClip) {
    Canvas canvas(10, 4, 1);
    canvas.SetClip({{0, 0, 1, 3}, {5, 1, 6, 2}});
    canvas.FillRect({-5, -5, 50, 50}, kBlack);
    canvas.StrokeLine({0, 0}, {9, 3}, kBlack);
    canvas.DrawText({12}, "MMMM", {0, 4}, kBlack);
    EXPECT_THAT(Rows(canvas.Picture()), ElementsAre("##........", //
                                                    "##...##...", //
                                                    "##...##...", //
                                                    "##........"));
}

TEST(Canvas, BearsPlacesFarOutside) {
    constexpr float kHuge = std::numeric_limits<float>::max();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    Canvas canvas(6, 3, 1);
    canvas.Resize(1, 1 << 30);
    EXPECT_EQ(canvas.Picture().height, 16384);
    canvas.Resize(6, 3);
    canvas.FillRect({kHuge, kHuge, kHuge, kHuge}, kBlack);
    canvas.FillRect({kNan, 0, kNan, 2}, kBlack);
    canvas.FillRect({3, 3, 1, 1}, kBlack);
    canvas.FillPolygon({{-kHuge, 100}, {kHuge, 100}, {kHuge, kHuge}}, kBlack);
    canvas.FillEllipse({-kHuge, 50, kHuge, 60}, kBlack);
    canvas.DrawText({kHuge}, "x", {kHuge, kNan}, kBlack);
    EXPECT_THAT(Rows(canvas.Picture()), ElementsAre("......", "......", "......"));
    canvas.StrokeLine({-50000, 1}, {50000, 1}, kBlack);
    EXPECT_THAT(Rows(canvas.Picture()), ElementsAre("......", "######", "......"));
    canvas.FillRect({-kHuge, -kHuge, kHuge, kHuge}, kBlack);
    EXPECT_THAT(Rows(canvas.Picture()), ElementsAre("######", "######", "######"));
}

} // namespace
} // namespace host

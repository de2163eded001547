#include "kits/interface/controls/AlertIcon.h"

#include <vector>

namespace {

constexpr float kStripRight = 29;
// Pictures are 32 pixels wide and high.
const BPoint kPictureOrigin(14, 12);

constexpr rgb_color kBlack{0, 0, 0, 255};
constexpr rgb_color kWhite{255, 255, 255, 255};
constexpr rgb_color kShadow{150, 150, 150, 255};

} // namespace

AlertIcon::AlertIcon(BRect frame, alert_type type)
    : BView(frame, "alert", B_FOLLOW_ALL, B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE)
    , fType(type) {
    SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
}

void AlertIcon::Draw(BRect) {
    if (fType == B_EMPTY_ALERT)
        return;
    SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
    FillRect({0, 0, kStripRight, Bounds().bottom});
    switch (fType) {
    case B_INFO_ALERT:
        DrawInfo();
        break;
    case B_IDEA_ALERT:
        DrawIdea();
        break;
    case B_WARNING_ALERT:
        DrawWarning();
        break;
    case B_STOP_ALERT:
        DrawStop();
        break;
    case B_EMPTY_ALERT:
        break;
    }
}

void AlertIcon::Polygon(std::initializer_list<BPoint> points, rgb_color color) {
    std::vector<BPoint> moved;
    for (BPoint point : points)
        moved.push_back(point + kPictureOrigin);
    SetHighColor(color);
    FillPolygon(moved.data(), static_cast<int32>(moved.size()));
}

void AlertIcon::Ellipse(BRect frame, rgb_color color) {
    SetHighColor(color);
    FillEllipse(frame.OffsetByCopy(kPictureOrigin));
}

void AlertIcon::Rect(BRect rect, rgb_color color) {
    SetHighColor(color);
    FillRect(rect.OffsetByCopy(kPictureOrigin));
}

void AlertIcon::DrawInfo() {
    Ellipse({2, 2, 31, 31}, kShadow);
    Ellipse({0, 0, 29, 29}, {16, 44, 110, 255});
    Ellipse({1, 1, 28, 28}, {52, 102, 196, 255});
    Ellipse({12, 5, 17, 10}, kWhite);
    Rect({10, 12, 16, 14}, kWhite);
    Rect({13, 12, 17, 22}, kWhite);
    Rect({10, 22, 20, 24}, kWhite);
}

void AlertIcon::DrawIdea() {
    Ellipse({6, 1, 29, 24}, kShadow);
    Ellipse({4, 0, 26, 22}, {140, 100, 0, 255});
    Polygon({{9, 18}, {21, 18}, {19, 24}, {11, 24}}, {140, 100, 0, 255});
    Ellipse({5, 1, 25, 21}, {255, 214, 46, 255});
    Polygon({{10, 18}, {20, 18}, {18, 23}, {12, 23}}, {255, 214, 46, 255});
    Ellipse({9, 4, 15, 10}, {255, 246, 190, 255});
    Rect({11, 24, 19, 29}, {70, 70, 70, 255});
    Rect({11, 25, 19, 25}, {180, 180, 180, 255});
    Rect({11, 27, 19, 27}, {180, 180, 180, 255});
    Rect({13, 30, 17, 30}, kBlack);
}

void AlertIcon::DrawWarning() {
    Polygon({{17, 3}, {31, 30}, {3, 30}}, kShadow);
    Polygon({{15, 0}, {30, 28}, {0, 28}}, {122, 70, 0, 255});
    Polygon({{15, 3}, {28, 27}, {2, 27}}, {255, 190, 30, 255});
    Polygon({{13, 10}, {17, 10}, {16, 19}, {14, 19}}, kBlack);
    Rect({13, 22, 17, 25}, kBlack);
}

void AlertIcon::DrawStop() {
    Polygon({{11, 2}, {22, 2}, {31, 11}, {31, 22}, {22, 31}, {11, 31}, {2, 22}, {2, 11}}, kShadow);
    Polygon({{9, 0}, {20, 0}, {29, 9}, {29, 20}, {20, 29}, {9, 29}, {0, 20}, {0, 9}},
            {104, 0, 0, 255});
    Polygon({{9, 1}, {20, 1}, {28, 9}, {28, 20}, {20, 28}, {9, 28}, {1, 20}, {1, 9}},
            {214, 20, 20, 255});
    Polygon({{8, 10}, {10, 8}, {21, 19}, {19, 21}}, kWhite);
    Polygon({{19, 8}, {21, 10}, {10, 21}, {8, 19}}, kWhite);
}

#include "kits/interface/drawing/LabelFont.h"

namespace {

constexpr float kSmallestPart = 0.7f;
constexpr float kStep = 0.5f;

} // namespace

BFont LabelFont(const BFont& font, const char* label, float width) {
    BFont smaller = font;
    while (smaller.StringWidth(label) > width && smaller.Size() > font.Size() * kSmallestPart)
        smaller.SetSize(smaller.Size() - kStep);
    return smaller;
}

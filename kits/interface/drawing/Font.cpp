#include "kits/interface/drawing/Font.h"

#include <algorithm>
#include <cmath>

#include "base/Utf8.h"
#include "host/draw/Text.h"
#include "host/x11/Display.h"

namespace {

constinit const BFont kPlainFont(12, B_REGULAR_FACE);
constinit const BFont kBoldFont(12, B_BOLD_FACE);

// Of a label's size, and the steps down to it.
constexpr float kSmallestPart = 0.7f;
constexpr float kStep = 0.5f;

} // namespace

constinit const BFont* const be_plain_font = &kPlainFont;
constinit const BFont* const be_bold_font = &kBoldFont;

std::future<void> prepare_font(const BFont& font) {
    return host::PrepareFont(SpecOf(font), DisplayScale());
}

void BFont::SetSize(float size) {
    fSize = std::isnan(size) ? 12 : std::clamp(size, 1.0f, 200.0f);
}

void BFont::SetTo(const BFont& font, uint32 mask) {
    if (mask & B_FONT_SIZE)
        fSize = font.fSize;
    if (mask & (B_FONT_FACE | B_FONT_FAMILY_AND_STYLE))
        fFace = font.fFace;
}

float BFont::StringWidth(const char* string) const {
    return string ? host::MeasureText(SpecOf(*this), string, DisplayScale()) : 0;
}

void BFont::GetHeight(font_height* height) const {
    host::FontHeight measured = host::MeasureFont(SpecOf(*this), DisplayScale());
    *height = {measured.ascent, measured.descent, measured.leading};
}

void BFont::GetBoundingBoxesAsGlyphs(const char charArray[], int32 numChars, font_metric_mode,
                                     BRect boundingBoxArray[]) const {
    std::string_view rest = charArray ? charArray : "";
    for (int32 i = 0; i < numChars && !rest.empty(); i++) {
        const std::string_view character = rest.substr(0, FirstCharacter(rest).length);
        boundingBoxArray[i] = host::MeasureInk(SpecOf(*this), character, DisplayScale());
        rest.remove_prefix(character.size());
    }
}

void BFont::GetBoundingBoxesForStrings(const char* const stringArray[], int32 numStrings,
                                       font_metric_mode, const escapement_delta[],
                                       BRect boundingBoxArray[]) const {
    for (int32 i = 0; i < numStrings; i++) {
        const char* string = stringArray[i] ? stringArray[i] : "";
        boundingBoxArray[i] = host::MeasureInk(SpecOf(*this), string, DisplayScale());
    }
}

void BFont::TruncateString(std::string* inOut, uint32, float width) const {
    *inOut = host::TruncateText(SpecOf(*this), *inOut, width, DisplayScale());
}

BFont LabelFont(const BFont& font, const char* label, float width) {
    BFont smaller = font;
    while (smaller.StringWidth(label) > width && smaller.Size() > font.Size() * kSmallestPart)
        smaller.SetSize(smaller.Size() - kStep);
    return smaller;
}

float BaselineIn(BRect frame, const BFont& font) {
    font_height height;
    font.GetHeight(&height);
    return std::floor(frame.top + (frame.Height() + 1 + height.ascent - height.descent) / 2);
}

host::FontSpec SpecOf(const BFont& font) {
    return {font.Size(), (font.Face() & B_BOLD_FACE) != 0};
}

double DisplayScale() {
    host::Display* display = host::Display::Shared();
    return display ? display->Scale() : 1;
}

#pragma once

#include <future>
#include <string>

#include "base/Rect.h"
#include "base/Types.h"

namespace host {
struct FontSpec;
}

// Distances from the baseline, in logical pixels, all positive.
struct font_height {
    float ascent = 0;
    float descent = 0;
    float leading = 0;
};

// Room that is added behind each character, in parts of the size.
struct escapement_delta {
    float nonspace = 0;
    float space = 0;
};

enum font_metric_mode {
    B_SCREEN_METRIC,
};

// Which properties of a font a call takes over.
enum : uint32 {
    B_FONT_FAMILY_AND_STYLE = 0x00000001,
    B_FONT_SIZE = 0x00000002,
    B_FONT_FACE = 0x00000040,
    B_FONT_ALL = 0x000001ff,
};

enum : uint16 {
    B_BOLD_FACE = 0x0020,
    B_REGULAR_FACE = 0x0040,
};

enum : uint32 {
    B_TRUNCATE_END = 0,
};

// The desktop's sans-serif font, regular or bold, at a size in logical pixels. A value; what it
// answers may be asked from any thread. Text is UTF-8; bytes that are not count as a replacement
// mark.
class BFont {
public:
    constexpr BFont() = default;
    constexpr BFont(const BFont& font) = default;
    // A copy of `font`; of the plain font if it is null.
    constexpr explicit BFont(const BFont* font) {
        if (font != nullptr)
            *this = *font;
    }
    constexpr BFont(float size, uint16 face)
        : fSize(size)
        , fFace(face) {}
    constexpr BFont& operator=(const BFont& font) = default;
    bool operator==(const BFont& font) const = default;

    // Kept between 1 and 200.
    void SetSize(float size);
    float Size() const { return fSize; }
    uint16 Face() const { return fFace; }

    // Takes those properties of `font` over that `mask` names.
    void SetTo(const BFont& font, uint32 mask);

    // In logical pixels, without rounding; `length` counts bytes, all of the string by default.
    float StringWidth(const char* string) const;
    void GetHeight(font_height* height) const;

    // The ink of each of the first `numChars` characters (not bytes), relative to the character's
    // own origin on the baseline; (0, 0, -1, -1) for one without ink. Boxes beyond the string's
    // last character are left alone.
    void GetBoundingBoxesAsGlyphs(const char charArray[], int32 numChars, font_metric_mode mode,
                                  BRect boundingBoxArray[]) const;

    // The ink of each of the `numStrings` strings, relative to the place on the baseline where it
    // starts; (0, 0, -1, -1) for one without ink. `deltas`, extra room between characters, is not
    // supported and should be null.
    void GetBoundingBoxesForStrings(const char* const stringArray[], int32 numStrings,
                                    font_metric_mode mode, const escapement_delta deltas[],
                                    BRect boundingBoxArray[]) const;

    // Cuts `inOut` to at most `width` and ends it with an ellipsis, if it was wider. `mode` is
    // B_TRUNCATE_END.
    void TruncateString(std::string* inOut, uint32 mode, float width) const;

private:
    float fSize = 12;
    uint16 fFace = B_REGULAR_FACE;
};

// The fonts of controls and of headings. They can be used before main().
extern const BFont* const be_plain_font;
extern const BFont* const be_bold_font;

// Reads the desktop's font settings in the background and finds `font`, so that the first text in
// it need not wait for that. Before the display is connected it is found for a scale of 1: at
// another one it is looked for again. Returns at once; main() must not return before what it
// returns is gone, whose destructor waits. Any thread.
std::future<void> prepare_font(const BFont& font);

// `font`, or the same in the largest smaller size at which `label` is not wider than `width`: a
// label with a little less room than it needs is easier to read small than cut. It does not go
// below seven tenths of the size: a longer label is to be cut.
BFont LabelFont(const BFont& font, const char* label, float width);

// The baseline, on a whole logical pixel, of a line of `font` in the middle of `frame`.
float BaselineIn(BRect frame, const BFont& font);

// For the kit's own drawing: the font, and the device pixels of a logical pixel (1 without a
// display).
host::FontSpec SpecOf(const BFont& font);
double DisplayScale();

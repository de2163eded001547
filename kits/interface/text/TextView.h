#pragma once

#include <optional>
#include <vector>

#include "host/draw/Text.h"
#include "kits/interface/window/View.h"

// Text of several lines, wrapped at words, for reading. Ranges count bytes and exclude their end.
// A text that is higher than the view is cut, with an ellipsis in the last line. Window's thread.
class BTextView : public BView {
public:
    // The text is wrapped to the width of `textRect` and starts at its left-top corner.
    BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags);

    void SetText(const char* text);

    void SetTextRect(BRect rect);
    // Whether lines also end where the text rectangle does, as they do at first, or only at new
    // lines.
    void SetWordWrap(bool wrap);
    // Whether parts of the text can have fonts and colours of their own; at first they cannot, and
    // fonts and colours go to the whole text.
    void SetStylable(bool stylable) { fStylable = stylable; }

    // Gives the range those properties of `font` that `mode` names, and the colour; either may be
    // null.
    void SetFontAndColor(const BFont* font, uint32 mode = B_FONT_ALL,
                         const rgb_color* color = nullptr);
    void SetFontAndColor(int32 start, int32 end, const BFont* font, uint32 mode = B_FONT_ALL,
                         const rgb_color* color = nullptr);
    // The same as the first SetFontAndColor().
    void SetFont(const BFont* font, uint32 mask = B_FONT_ALL) override;

    int32 CountLines() const { return static_cast<int32>(Lines().size()); }
    // In logical pixels; 0 for a line that does not exist.
    float LineWidth(int32 line) const;
    // Of all lines, or of those from `firstLine` to `lastLine`, both counted, in logical pixels.
    float TextHeight() const { return TextHeight(0, CountLines() - 1); }
    float TextHeight(int32 firstLine, int32 lastLine) const;

    void Draw(BRect updateRect) override;

private:
    int32 Length() const { return static_cast<int32>(fBlock.text.size()); }
    size_t SplitAt(int32 offset);
    void Changed();
    const std::vector<host::LineSize>& Lines() const;

    BRect fTextRect;
    bool fStylable = false;
    bool fWordWrap = true;
    std::vector<BFont> fFonts; // of the block's runs
    host::TextBlock fBlock;
    mutable std::optional<std::vector<host::LineSize>> fLines; // measured when asked for
    mutable double fScale = 0;                                 // of the lines
};

#pragma once

#include <string>
#include <vector>

#include "kits/interface/window/View.h"

// Text of several lines, wrapped at words, for reading. Ranges count bytes and exclude their end.
// What does not fit into the view's height is cut off with an ellipsis in the last line.
class BTextView : public BView {
public:
    // The text is wrapped to the width of `textRect` and starts at its left-top corner.
    BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags);

    virtual void SetText(const char* text);
    virtual const char* Text() const { return fText.c_str(); }
    virtual int32 TextLength() const;

    void SetTextRect(BRect rect);
    BRect TextRect() const { return fTextRect; }

    // Whether lines also end where the text rectangle does, as they do at first, or only at new
    // lines.
    void SetWordWrap(bool wrap);
    bool DoesWordWrap() const { return fWordWrap; }

    // Whether parts of the text can have fonts and colours of their own; at first they cannot, and
    // fonts and colours go to the whole text.
    void SetStylable(bool stylable);
    bool IsStylable() const { return fStylable; }

    // Gives the range those properties of `font` that `mode` names, and the colour; either may be
    // null.
    void SetFontAndColor(const BFont* font, uint32 mode = B_FONT_ALL,
                         const rgb_color* color = nullptr);
    virtual void SetFontAndColor(int32 start, int32 end, const BFont* font,
                                 uint32 mode = B_FONT_ALL, const rgb_color* color = nullptr);
    // Those of the byte at `offset`; either may be null.
    void GetFontAndColor(int32 offset, BFont* font, rgb_color* color = nullptr) const;
    // The same as the first SetFontAndColor().
    void SetFont(const BFont* font, uint32 mask = B_FONT_ALL) override;

    int32 CountLines() const;
    // In logical pixels; 0 for a line that is not there.
    float LineWidth(int32 line) const;
    // Of all lines, or of those from `firstLine` to `lastLine`, both counted, in logical pixels.
    float TextHeight() const;
    float TextHeight(int32 firstLine, int32 lastLine) const;

    void Draw(BRect updateRect) override;

private:
    struct Run { // a stretch of text of one style, up to the next run
        int32 start;
        BFont font;
        rgb_color color;
    };
    struct Line {
        int32 start;
        int32 end; // without the blank or new line it was broken at
        float ascent;
        float height;
    };

    int32 Length() const { return static_cast<int32>(fText.size()); }
    size_t RunAt(int32 offset) const;
    size_t SplitAt(int32 offset);
    int32 RunEnd(size_t run) const;
    float Width(int32 start, int32 end) const;
    void Layout();
    Line Measured(int32 start, int32 end) const;
    int32 LineEnd(int32 start, int32 limit) const;
    int32 FittingCharacters(int32 start, int32 limit, float room) const;
    void DrawLine(const Line& line, float baseline, bool isCut);
    size_t LinesThatFit() const;

    std::string fText;
    BRect fTextRect;
    bool fStylable = false;
    bool fWordWrap = true;
    std::vector<Run> fRuns;
    std::vector<Line> fLines;
};

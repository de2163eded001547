#include "kits/interface/text/TextView.h"

#include <algorithm>
#include <cmath>

#include "host/draw/Canvas.h"
#include "kits/interface/drawing/Font.h"

BTextView::BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode,
                     uint32 flags)
    : BView(frame, name, resizingMode, flags)
    , fTextRect(textRect) {
    SetText("");
}

void BTextView::SetText(const char* text) {
    BFont font;
    GetFont(&font);
    fBlock.text = text ? text : "";
    fBlock.runs = {{0, SpecOf(font), HighColor()}};
    fFonts = {font};
    Changed();
}

void BTextView::SetTextRect(BRect rect) {
    fTextRect = rect;
    Changed();
}

void BTextView::SetWordWrap(bool wrap) {
    fWordWrap = wrap;
    Changed();
}

void BTextView::SetFontAndColor(const BFont* font, uint32 mode, const rgb_color* color) {
    SetFontAndColor(0, Length(), font, mode, color);
}

void BTextView::SetFontAndColor(int32 start, int32 end, const BFont* font, uint32 mode,
                                const rgb_color* color) {
    start = fStylable ? std::clamp(start, 0, Length()) : 0;
    end = fStylable ? std::clamp(end, 0, Length()) : Length();
    if (start > end || (start == end && Length() > 0))
        return;
    size_t first = SplitAt(start);
    size_t behind = end == Length() ? fFonts.size() : SplitAt(end);
    for (size_t i = first; i < behind; i++) {
        if (font != nullptr)
            fFonts[i].SetTo(*font, mode);
        fBlock.runs[i].font = SpecOf(fFonts[i]);
        if (color != nullptr)
            fBlock.runs[i].color = *color;
    }
    Changed();
}

void BTextView::SetFont(const BFont* font, uint32 mask) {
    BView::SetFont(font, mask);
    SetFontAndColor(font, mask);
}

float BTextView::LineWidth(int32 line) const {
    return line < 0 || line >= CountLines() ? 0 : Lines()[static_cast<size_t>(line)].width;
}

float BTextView::TextHeight(int32 firstLine, int32 lastLine) const {
    float height = 0;
    const int32 last = std::min(lastLine, CountLines() - 1);
    for (int32 line = std::max<int32>(firstLine, 0); line <= last; line++)
        height += Lines()[static_cast<size_t>(line)].height;
    return height;
}

// The index of the run that starts at `offset`, made if there is none.
size_t BTextView::SplitAt(int32 offset) {
    auto behind = std::ranges::upper_bound(fBlock.runs, offset, {}, &host::TextBlock::Run::start);
    const auto index = behind - fBlock.runs.begin() - 1;
    host::TextBlock::Run run = fBlock.runs[static_cast<size_t>(index)];
    if (run.start == offset)
        return static_cast<size_t>(index);
    run.start = offset;
    fBlock.runs.insert(behind, run);
    fFonts.insert(fFonts.begin() + index + 1, fFonts[static_cast<size_t>(index)]);
    return static_cast<size_t>(index) + 1;
}

void BTextView::Changed() {
    fBlock.width = fWordWrap ? fTextRect.Width() + 1 : -1;
    fLines.reset();
    Invalidate();
}

const std::vector<host::LineSize>& BTextView::Lines() const {
    const double scale = DisplayScale();
    if (!fLines || fScale != scale)
        fLines = host::MeasureLines(fBlock, scale);
    fScale = scale;
    return *fLines;
}

void BTextView::Draw(BRect) {
    if (host::Canvas* canvas = Canvas()) {
        canvas->DrawBlock(fBlock, fTextRect.LeftTop() + OriginInWindow(),
                          Bounds().bottom + 1 - fTextRect.top);
    }
}

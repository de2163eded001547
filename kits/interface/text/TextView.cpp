#include "kits/interface/text/TextView.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr char kEllipsis[] = "\xe2\x80\xa6";

bool IsInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

} // namespace

BTextView::BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode,
                     uint32 flags)
    : BView(frame, name, resizingMode, flags)
    , fTextRect(textRect) {
    BTextView::SetText("");
}

void BTextView::SetText(const char* text) {
    fText = text ? text : "";
    BFont font;
    GetFont(&font);
    fRuns = {{0, font, HighColor()}};
    Layout();
}

int32 BTextView::TextLength() const {
    return Length();
}

void BTextView::SetTextRect(BRect rect) {
    fTextRect = rect;
    Layout();
}

void BTextView::SetWordWrap(bool wrap) {
    fWordWrap = wrap;
    Layout();
}

void BTextView::SetStylable(bool stylable) {
    fStylable = stylable;
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
    size_t behind = end == Length() ? fRuns.size() : SplitAt(end);
    for (size_t i = first; i < behind; i++) {
        if (font != nullptr)
            fRuns[i].font.SetTo(*font, mode);
        if (color != nullptr)
            fRuns[i].color = *color;
    }
    Layout();
}

void BTextView::GetFontAndColor(int32 offset, BFont* font, rgb_color* color) const {
    const Run& run = fRuns[RunAt(offset)];
    if (font != nullptr)
        *font = run.font;
    if (color != nullptr)
        *color = run.color;
}

void BTextView::SetFont(const BFont* font, uint32 mask) {
    BView::SetFont(font, mask);
    SetFontAndColor(font, mask);
}

int32 BTextView::CountLines() const {
    return static_cast<int32>(fLines.size());
}

float BTextView::LineWidth(int32 line) const {
    if (line < 0 || line >= CountLines())
        return 0;
    const Line& measured = fLines[static_cast<size_t>(line)];
    return Width(measured.start, measured.end);
}

float BTextView::TextHeight() const {
    return TextHeight(0, CountLines() - 1);
}

float BTextView::TextHeight(int32 firstLine, int32 lastLine) const {
    float height = 0;
    const int32 last = std::min(lastLine, CountLines() - 1);
    for (int32 line = std::max<int32>(firstLine, 0); line <= last; line++)
        height += fLines[static_cast<size_t>(line)].height;
    return height;
}

size_t BTextView::RunAt(int32 offset) const {
    size_t index = 0;
    while (index + 1 < fRuns.size() && fRuns[index + 1].start <= offset)
        index++;
    return index;
}

// The run that starts at `offset`, made if there is none.
size_t BTextView::SplitAt(int32 offset) {
    size_t index = RunAt(offset);
    if (fRuns[index].start == offset)
        return index;
    Run rest = fRuns[index];
    rest.start = offset;
    fRuns.insert(fRuns.begin() + static_cast<std::ptrdiff_t>(index) + 1, rest);
    return index + 1;
}

int32 BTextView::RunEnd(size_t run) const {
    return run + 1 < fRuns.size() ? fRuns[run + 1].start : Length();
}

float BTextView::Width(int32 start, int32 end) const {
    float width = 0;
    for (size_t i = RunAt(start); start < end; i++) {
        int32 stop = std::min(end, RunEnd(i));
        width += fRuns[i].font.StringWidth(fText.c_str() + start, stop - start);
        start = stop;
    }
    return width;
}

void BTextView::Layout() {
    fLines.clear();
    int32 start = 0;
    while (true) {
        size_t found = fText.find('\n', static_cast<size_t>(start));
        int32 limit = found == std::string::npos ? Length() : static_cast<int32>(found);
        int32 end = LineEnd(start, limit);
        fLines.push_back(Measured(start, end));
        if (end == limit) {
            if (found == std::string::npos)
                break;
            start = limit + 1;
            continue;
        }
        start = end;
        while (start < limit && fText[static_cast<size_t>(start)] == ' ')
            start++;
    }
    Invalidate();
}

BTextView::Line BTextView::Measured(int32 start, int32 end) const {
    float ascent = 0;
    float below = 0;
    for (size_t i = RunAt(start); i < fRuns.size() && (i == RunAt(start) || fRuns[i].start < end);
         i++) {
        font_height height;
        fRuns[i].font.GetHeight(&height);
        ascent = std::max(ascent, std::ceil(height.ascent));
        below = std::max(below, std::ceil(height.descent + height.leading));
    }
    return {start, end, ascent, ascent + below};
}

// As many words as fit, or else as many characters, one at least.
int32 BTextView::LineEnd(int32 start, int32 limit) const {
    if (!fWordWrap)
        return limit;
    float room = fTextRect.Width() + 1;
    int32 fitting = start;
    int32 word = start;
    while (word < limit) {
        size_t blank = fText.find(' ', static_cast<size_t>(std::max(word, start + 1)));
        int32 end = blank == std::string::npos ? limit : std::min(static_cast<int32>(blank), limit);
        if (Width(start, end) > room)
            break;
        fitting = end;
        word = end + 1;
    }
    if (fitting > start || start == limit)
        return fitting;
    return FittingCharacters(start, limit, room);
}

int32 BTextView::FittingCharacters(int32 start, int32 limit, float room) const {
    auto characterEnd = [&](int32 at) {
        int32 longest = std::min(limit, at + 3);
        while (at < longest && IsInsideCharacter(fText[static_cast<size_t>(at)]))
            at++;
        return at;
    };
    int32 fits = characterEnd(start + 1);
    int32 tooLong = limit;
    while (tooLong - fits > 1) {
        int32 middle = characterEnd(fits + (tooLong - fits) / 2);
        if (middle >= tooLong) {
            tooLong = fits + (tooLong - fits) / 2;
            continue;
        }
        if (Width(start, middle) <= room)
            fits = middle;
        else
            tooLong = middle;
    }
    return fits;
}

size_t BTextView::LinesThatFit() const {
    float bottom = fTextRect.top;
    size_t count = 0;
    for (const Line& line : fLines) {
        bottom += line.height;
        if (bottom > Bounds().bottom + 1)
            break;
        count++;
    }
    return count;
}

void BTextView::Draw(BRect updateRect) {
    size_t count = LinesThatFit();
    float top = fTextRect.top;
    for (size_t i = 0; i < count; i++) {
        const Line& line = fLines[i];
        bool isCut = i + 1 == count && count < fLines.size();
        if (top <= updateRect.bottom && top + line.height >= updateRect.top)
            DrawLine(line, top + line.ascent, isCut);
        top += line.height;
    }
}

void BTextView::DrawLine(const Line& line, float baseline, bool isCut) {
    BFont ownFont;
    GetFont(&ownFont);
    rgb_color ownColor = HighColor();
    MovePenTo(fTextRect.left, baseline);
    int32 start = line.start;
    for (size_t i = RunAt(start); start < line.end || (isCut && start == line.end); i++) {
        int32 stop = std::min(line.end, RunEnd(i));
        std::string part =
            fText.substr(static_cast<size_t>(start), static_cast<size_t>(stop - start));
        if (isCut && stop == line.end) {
            part += kEllipsis;
            fRuns[i].font.TruncateString(&part, B_TRUNCATE_END,
                                         fTextRect.right + 1 - PenLocation().x);
        }
        BView::SetFont(&fRuns[i].font);
        SetHighColor(fRuns[i].color);
        DrawString(part.c_str());
        if (stop == line.end)
            break;
        start = stop;
    }
    BView::SetFont(&ownFont);
    SetHighColor(ownColor);
}

#include "quillbar/about/URLView.h"

#include <array>
#include <cmath>
#include <string_view>

#include "kits/app/Message.h"
#include "kits/interface/window/Window.h"

namespace {

constexpr const char* kMailPrefix = "mailto:";

// A hand that points up.
constexpr std::string_view kHand[16] = {
    "  ##            ", //
    " #  #           ", //
    " #  #           ", //
    " #  #           ", //
    " #  ###         ", //
    " #  #  ###      ", //
    " #  #  #  ##    ", //
    "##  #  #  # #   ", //
    "# # #  #  #  #  ", //
    "#            #  ", //
    " #           #  ", //
    " #           #  ", //
    "  #         #   ", //
    "   #        #   ", //
    "   ##########   ", //
    "                ", //
};
constexpr uint8 kHotRow = 1;
constexpr uint8 kHotColumn = 2;

// The outline is black; what it encloses in a row, and itself, is seen.
constexpr std::array<uint8, 68> DrawCursor() {
    std::array<uint8, 68> data{16, 1, kHotRow, kHotColumn};
    for (size_t row = 0; row < 16; ++row) {
        const size_t first = kHand[row].find('#'), last = kHand[row].rfind('#');
        for (size_t column = 0; column < 16; ++column) {
            const size_t byte = 4 + 2 * row + column / 8;
            const auto bit = static_cast<uint8>(0x80 >> column % 8);
            if (kHand[row][column] == '#')
                data[byte] |= bit;
            if (first != std::string_view::npos && column >= first && column <= last)
                data[byte + 32] |= bit;
        }
    }
    return data;
}

constexpr std::array<uint8, 68> kCursor = DrawCursor();

bool BeginsWith(const BString& link, std::string_view prefix) {
    return std::string_view(link.String()).starts_with(prefix);
}

} // namespace

URLView::URLView(BRect frame, const char* name, const char* label, const char* url,
                 uint32 resizingMode, uint32 flags)
    : BStringView(frame, name, label, resizingMode, flags)
    , fLinkCursor(kCursor.data()) {
    URLView::SetURL(url);
}

URLView::~URLView() = default;

void URLView::AttachedToWindow() {
    SetHighColor(fEnabled ? fColor : fDisabledColor);
    if (Parent()) {
        SetLowColor(Parent()->ViewColor());
        SetViewColor(Parent()->ViewColor());
    }
}

void URLView::Draw(BRect) {
    const BRect frame = Frame().OffsetToCopy(B_ORIGIN);
    font_height height;
    GetFontHeight(&height);
    const float left = frame.left + TextOffset();
    const float line = frame.bottom - height.descent;
    if (fEnabled) {
        FillRect(BRect(left, line, left + StringWidth(Text()) - 2,
                       line + static_cast<float>(fUnderlineThickness - 1)));
    }
    MovePenTo(left, line - 1);
    DrawString(Text());
}

void URLView::WindowActivated(bool active) {
    if (active || !fEnabled)
        return;
    SetViewCursor(B_HAND_CURSOR);
    ShowColor(fColor);
}

// The old letters must not show through the soft edges of the new ones.
void URLView::Redraw() {
    const BRect frame = Frame().OffsetToCopy(B_ORIGIN);
    const rgb_color color = HighColor();
    SetHighColor(ViewColor());
    FillRect(frame);
    SetHighColor(color);
    Draw(frame);
}

void URLView::ShowColor(rgb_color color) {
    SetHighColor(color);
    Redraw();
}

// Drawing by another thread than the window's is not shown by itself.
void URLView::ShowAndUnlock() {
    Window()->UpdateIfNeeded();
    Window()->Unlock();
}

// Where the text starts.
float URLView::TextOffset() const {
    const float width = StringWidth(Text());
    switch (Alignment()) {
    case B_ALIGN_CENTER:
        return Frame().Width() / 2 - width / 2;
    case B_ALIGN_RIGHT:
        return Frame().Width() - width + 1;
    default:
        return 0;
    }
}

// Where the link takes the pointer: the ink of the text, with the underline.
BRect URLView::GetTextRect() const {
    BFont font;
    GetFont(&font);
    const char* const text[] = {Text()};
    BRect ink;
    font.GetBoundingBoxesForStrings(text, 1, B_SCREEN_METRIC, nullptr, &ink);
    font_height height;
    font.GetHeight(&height);
    const bool isRoundedUp = std::trunc(height.descent * 2) != std::trunc(height.descent) * 2;
    const float raised = isRoundedUp ? 1 : 0;
    const float line = Frame().Height() - height.descent - raised;
    return {0, line - (ink.bottom + 1 - ink.top) - 1, ink.Width(),
            line + static_cast<float>(fUnderlineThickness)};
}

BRect URLView::GetURLRect() const {
    font_height height;
    GetFontHeight(&height);
    const float bottom = Frame().Height();
    return {0, bottom - (height.ascent + static_cast<float>(fUnderlineThickness - 1)),
            StringWidth(fURL.String()), bottom - 1};
}

bool URLView::IsHTMLLink() const {
    return BeginsWith(fURL, "http://") || BeginsWith(fURL, "file://");
}

bool URLView::IsFTPLink() const {
    return BeginsWith(fURL, "ftp://");
}

bool URLView::IsEmailLink() const {
    return BeginsWith(fURL, kMailPrefix) ||
           (!IsHTMLLink() && !IsFTPLink() && fURL.FindFirst('@') >= 0);
}

BString URLView::GetImportantURL() const {
    BString important = fURL;
    if (BeginsWith(fURL, kMailPrefix))
        important.Remove(0, static_cast<int32>(std::string_view(kMailPrefix).size()));
    return important;
}

void URLView::SetURL(const char* url) {
    fURL = url;
    if (IsEmailLink()) {
        if (!BeginsWith(fURL, kMailPrefix))
            fURL.Prepend(kMailPrefix);
    } else if (!IsHTMLLink() && !IsFTPLink()) {
        SetEnabled(false);
    }
}

void URLView::AddAttribute(const char* name, const char* value) {
    fAttributes.emplace_back(name, value);
}

void URLView::SetColor(rgb_color color) {
    fColor = color;
    if (!fEnabled || !Window() || !Window()->Lock())
        return;
    ShowColor(fColor);
    ShowAndUnlock();
}

void URLView::SetDisabledColor(rgb_color color) {
    fDisabledColor = color;
    if (!Window() || !Window()->Lock())
        return;
    if (!fEnabled)
        SetHighColor(fDisabledColor);
    Redraw();
    ShowAndUnlock();
}

void URLView::SetEnabled(bool enabled) {
    const bool hasChanged = std::exchange(fEnabled, enabled) != enabled;
    if (!Window() || !Window()->Lock())
        return;
    SetHighColor(fEnabled ? fColor : fDisabledColor);
    if (hasChanged)
        Invalidate();
    ShowAndUnlock();
}

void URLView::SetIconSize(icon_size size) {
    fIconSize = size == B_MINI_ICON ? B_MINI_ICON : B_LARGE_ICON;
}

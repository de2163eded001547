#include "kits/interface/text/TextField.h"

#include <algorithm>
#include <cmath>

#include "base/Utf8.h"
#include "kits/app/Message.h"
#include "kits/interface/text/TextControl.h"
#include "kits/interface/window/WindowState.h"

namespace {

constexpr float kMargin = 2; // left and right of the text
// All of a text is measured again with each change.
constexpr size_t kMaxBytes = 4096;

constexpr bigtime_t kBlinkInterval = 530'000;
// It stops some seconds after the user's last change; an even number ends with a visible caret.
constexpr int32 kBlinks = 20;
constexpr rgb_color kPaper{255, 255, 255, 255};
constexpr rgb_color kInk{0, 0, 0, 255};
constexpr rgb_color kSelectionColor{172, 200, 255, 255};
constexpr rgb_color kPassiveSelectionColor{216, 216, 216, 255};

} // namespace

TextField::TextField(BTextControl& control)
    : BView(BRect(0, 0, 0, 0), "field", B_FOLLOW_NONE,
            B_WILL_DRAW | B_FRAME_EVENTS | B_FULL_UPDATE_ON_RESIZE)
    , fControl(control) {
    SetViewColor(kPaper);
    SetViewCursor(B_I_BEAM_CURSOR);
}

void TextField::SetText(const char* text) {
    std::string_view changed = text ? text : "";
    if (changed == fLine.Text())
        return;
    fLine.SetText(changed);
    fHistory.Clear();
    fAnchor = fCaret = 0;
    fScroll = 0;
    Invalidate();
}

void TextField::SetFont(const BFont* font, uint32 mask) {
    BView::SetFont(font, mask);
    BFont whole;
    GetFont(&whole);
    fLine.SetFont(whole);
    ShowCaret();
    Invalidate();
}

TextLine::Range TextField::Selection() const {
    return std::minmax(fAnchor, fCaret);
}

void TextField::Select(int32 start, int32 end) {
    fAnchor = fLine.Snapped(start);
    SetCaret(fLine.Snapped(end), true);
}

void TextField::SelectAll() {
    Select(0, TextLength());
}

void TextField::GetSelection(int32* start, int32* end) const {
    *start = Selection().first;
    *end = Selection().second;
}

void TextField::SetCaret(int32 caret, bool extends) {
    fHistory.EndGroup();
    fCaret = caret;
    if (!extends)
        fAnchor = caret;
    ShowCaret();
    UpdateCaret();
    Invalidate();
}

void TextField::Change(TextLine::Range range, std::string_view text, UndoHistory::Kind kind) {
    auto start = static_cast<size_t>(range.first);
    auto length = static_cast<size_t>(range.second - range.first);
    // A text that was set may be longer than any that can be typed.
    size_t kept = std::min(fLine.Text().size() - length, kMaxBytes);
    std::string_view added = CutUtf8(text, kMaxBytes - kept);
    if (added.size() < text.size())
        host::Display::Shared()->Beep();
    fHistory.Add({range.first, fLine.Text().substr(start, length), std::string(added), Selection()},
                 kind);
    fLine.Replace(range, added);
    fAnchor = fCaret = fLine.Snapped(range.first + static_cast<int32>(added.size()));
    ShowCaret();
    UpdateCaret();
    Invalidate();
}

void TextField::Insert(std::string_view text, UndoHistory::Kind kind) {
    std::string line = OneLineOf(text);
    if (!line.empty())
        Change(Selection(), line, kind);
}

void TextField::Undo() {
    const TextEdit* edit = fHistory.Undo();
    if (edit == nullptr)
        return;
    fLine.Replace({edit->offset, edit->offset + static_cast<int32>(edit->inserted.size())},
                  edit->removed);
    Select(edit->selection.first, edit->selection.second);
}

void TextField::Redo() {
    const TextEdit* edit = fHistory.Redo();
    if (edit == nullptr)
        return;
    fLine.Replace({edit->offset, edit->offset + static_cast<int32>(edit->removed.size())},
                  edit->inserted);
    SetCaret(fLine.Snapped(edit->offset + static_cast<int32>(edit->inserted.size())), false);
}

void TextField::SetEnabled(bool enabled) {
    fIsEnabled = enabled;
    if (!enabled)
        MakeFocus(false);
    SetViewCursor(enabled ? B_I_BEAM_CURSOR : B_SYSTEM_DEFAULT_CURSOR);
    SetViewColor(enabled ? kPaper : tint_color(fControl.ViewColor(), B_LIGHTEN_1_TINT));
    Invalidate();
}

bool TextField::ShowsFocus() const {
    return IsFocus() && Window()->IsActive();
}

float TextField::Baseline() const {
    BFont font;
    GetFont(&font);
    return BaselineIn(Bounds(), font);
}

float TextField::TextRoom() const {
    return Bounds().Width() + 1 - 2 * kMargin;
}

float TextField::LinePlaceOf(BPoint where) const {
    return where.x - kMargin + fScroll;
}

// Scrolls as little as that takes, and leaves no room unused behind the text.
void TextField::ShowCaret() {
    float place = fLine.PlaceOf(fCaret);
    float last = TextRoom() - 1;
    fScroll = std::clamp(fScroll, place - last, place);
    float most = std::max(0.0f, fLine.Width() - last);
    fScroll = std::floor(std::clamp(fScroll, 0.0f, most + 0.5f));
}

void TextField::Draw(BRect) {
    const rgb_color ink = HighColor();
    const float left = kMargin - fScroll;
    SetHighColor(ShowsFocus() ? kSelectionColor : kPassiveSelectionColor);
    for (auto [from, to] : fLine.StretchesIn(Selection()))
        FillRect(BRect(left + from, 1, left + to - 1, Bounds().bottom - 1));
    SetHighColor(fIsEnabled ? ink : tint_color(fControl.ViewColor(), B_DARKEN_4_TINT));
    DrawString(Text(), BPoint(left, Baseline()));
    if (ShowsFocus() && fAnchor == fCaret && fShowsCaret) {
        SetHighColor(kInk);
        FillRect(CaretFrame());
    }
    SetHighColor(ink);
}

BRect TextField::CaretFrame() const {
    float x = std::floor(kMargin - fScroll + fLine.PlaceOf(fCaret));
    return {x, 1, x, Bounds().bottom - 1};
}

void TextField::UpdateCaret() {
    fShowsCaret = true;
    fBlinkRound++;
    fBlinker.reset();
    if (!ShowsFocus())
        return;
    if (fAnchor == fCaret) {
        BMessage tick(kBlinkTick);
        tick.AddInt32("round", fBlinkRound);
        fBlinker =
            std::make_unique<BMessageRunner>(BMessenger(this), &tick, kBlinkInterval, kBlinks);
    }
    Window()->fState->ShowTextCaret(*this, CaretFrame());
}

void TextField::Blink(const BMessage& tick) {
    if (tick.GetInt32("round", 0) != fBlinkRound)
        return;
    fShowsCaret = !fShowsCaret;
    Invalidate(CaretFrame());
}

void TextField::MakeFocus(bool focus) {
    if (Window() == nullptr || focus == IsFocus() || (focus && !fIsEnabled))
        return;
    BView::MakeFocus(focus);
    if (focus) {
        SelectAll();
    } else {
        EndDrag();
        Window()->fState->HideTextCaret();
    }
    fHistory.EndGroup();
    UpdateCaret();
    Invalidate();
    fControl.FocusChanged(focus);
}

void TextField::WindowActivated(bool active) {
    if (!IsFocus())
        return;
    if (!active)
        Window()->fState->HideTextCaret();
    UpdateCaret();
    Invalidate();
    fControl.Invalidate();
}

void TextField::FrameResized(float, float) {
    ShowCaret();
}

void TextField::DetachedFromWindow() {
    EndDrag();
    fBlinker.reset();
    if (IsFocus())
        Window()->fState->HideTextCaret();
}

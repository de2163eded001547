#include "kits/interface/menus/MenuItem.h"

#include <cmath>

#include "kits/app/Message.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuPlacement.h"

namespace {

// Keys that lie side by side, by their raw codes.
struct KeyRow {
    int32 first;
    std::string_view characters;
};
constexpr KeyRow kDigits = {0x12, "1234567890"};
constexpr KeyRow kLetters[] = {{0x27, "qwertyuiop"}, {0x3c, "asdfghjkl"}, {0x4c, "zxcvbnm"}};

char CharacterIn(const KeyRow& row, int32 key) {
    const int32 place = key - row.first;
    return place >= 0 && place < static_cast<int32>(row.characters.size())
               ? row.characters[static_cast<size_t>(place)]
               : '\0';
}

bool IsAscii(std::string_view bytes) {
    return bytes.size() == 1 && bytes[0] > B_SPACE && bytes[0] < B_DELETE;
}

char ToLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

char ToUpper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
}

} // namespace

BMenuItem::BMenuItem(const char* label, BMessage* message, char shortcut, uint32 modifiers)
    : BInvoker(message, BMessenger())
    , fLabel(label ? label : "")
    , fShortcut(ToLower(shortcut))
    , fModifiers(shortcut != 0 ? modifiers | B_COMMAND_KEY : 0) {}

BMenuItem::BMenuItem(BMenu* submenu, BMessage* message)
    : BInvoker(message, BMessenger())
    , fLabel(submenu->Name())
    , fSubmenu(submenu) {
    submenu->fSuperitem = this;
}

BMenuItem::~BMenuItem() {
    if (fMenu)
        fMenu->RemoveItem(this);
    if (fSubmenu) {
        fSubmenu->fSuperitem = nullptr;
        delete fSubmenu;
    }
}

void BMenuItem::SetLabel(const char* label) {
    std::string now = label ? label : "";
    if (now == fLabel)
        return;
    fLabel = std::move(now);
    fMeasured = false;
    Changed(true);
}

void BMenuItem::SetEnabled(bool enabled) {
    if (enabled == fEnabled)
        return;
    fEnabled = enabled;
    Changed(false);
}

void BMenuItem::SetMarked(bool marked) {
    if (marked && fMenu)
        fMenu->ItemMarked(this);
    if (marked == fMarked)
        return;
    fMarked = marked;
    Changed(false);
}

BRect BMenuItem::Frame() const {
    if (!fMenu)
        return BRect();
    float top = fMenu->Viewport().top + fTop - fMenu->fScroll;
    return {kMenuInset, top, fMenu->Bounds().right - kMenuInset, top + fHeight - 1};
}

bool BMenuItem::IsSelected() const {
    return fMenu && fMenu->fSelected == this;
}

status_t BMenuItem::Invoke(BMessage* message) {
    const BMessage* sent = message ? message : Message();
    if (!sent)
        return B_BAD_VALUE;
    BMessage copy(*sent);
    copy.AddPointer("source", this);
    copy.AddInt32("index", fMenu ? fMenu->IndexOf(this) : -1);
    if (fMenu && fMenu->IsRadioMode())
        SetMarked(true);
    return BInvoker::Invoke(&copy);
}

void BMenuItem::GetContentSize(float* width, float* height) {
    font_height font;
    fMenu->GetFontHeight(&font);
    *width = fMenu->StringWidth(Label());
    *height = std::ceil(font.ascent + font.descent + font.leading);
}

void BMenuItem::Draw() {
    const rgb_color background = fMenu->ViewColor();
    const bool highlighted = IsSelected() && IsSelectable();
    if (highlighted) {
        fMenu->SetHighColor(ui_color(B_MENU_SELECTION_BACKGROUND_COLOR));
        fMenu->FillRect(Frame());
    }
    fMenu->SetHighColor(!fEnabled     ? tint_color(background, B_DARKEN_3_TINT)
                        : highlighted ? ui_color(B_MENU_SELECTED_ITEM_TEXT_COLOR)
                                      : ui_color(B_MENU_ITEM_TEXT_COLOR));
    if (fMarked)
        DrawMark();
    if (fSubmenu)
        DrawSubmenuArrow();
    if (fShortcut != 0)
        DrawShortcut();
    DrawContent();
}

void BMenuItem::DrawContent() {
    BFont font;
    fMenu->GetFont(&font);
    const BPoint baseline(ContentLocation().x, Baseline());
    const float room = Frame().Width() + 1 - kItemLeft - fMenu->RoomBehindLabels();
    if (fContentWidth <= room) {
        fMenu->DrawString(Label(), baseline);
        return;
    }
    std::string cut = fLabel;
    font.TruncateString(&cut, B_TRUNCATE_END, room);
    fMenu->DrawString(cut.c_str(), baseline);
}

float BMenuItem::Baseline() const {
    font_height height;
    fMenu->GetFontHeight(&height);
    const float lineHeight = std::ceil(height.ascent + height.descent + height.leading);
    const float above = std::floor((Frame().Height() + 1 - lineHeight) / 2);
    return Frame().top + above + std::ceil(height.ascent);
}

void BMenuItem::Highlight(bool) {
    fMenu->Invalidate(Frame());
}

BPoint BMenuItem::ContentLocation() const {
    return Frame().LeftTop() + BPoint(kItemLeft, kItemTop);
}

void BMenuItem::Changed(bool size) {
    if (fMenu)
        fMenu->ItemChanged(size);
}

void BMenuItem::Measure() {
    if (fMeasured)
        return;
    fMeasured = true;
    GetContentSize(&fContentWidth, &fHeight);
    fContentWidth = std::ceil(fContentWidth);
    fHeight = std::ceil(fHeight) + kItemTop + kItemBottom;
    fShortcutWidth =
        fShortcut == 0
            ? 0
            : std::ceil(fMenu->StringWidth(ShortcutLabel(fShortcut, fModifiers).c_str()));
}

void BMenuItem::DrawMark() {
    const BRect frame = Frame();
    const BPoint corner(frame.left + 8, std::floor((frame.top + frame.bottom) / 2) + 3);
    for (float down : {-1.0f, 0.0f}) {
        const BPoint low = corner + BPoint(0, down);
        fMenu->StrokeLine(low - BPoint(3, 3), low);
        fMenu->StrokeLine(low + BPoint(6, -6));
    }
}

void BMenuItem::DrawSubmenuArrow() {
    const BRect frame = Frame();
    const float middle = std::floor((frame.top + frame.bottom) / 2);
    const BPoint arrow[] = {
        {frame.right - 11, middle - 4}, {frame.right - 7, middle}, {frame.right - 11, middle + 4}};
    fMenu->FillPolygon(arrow, 3);
}

// All shortcuts of a menu end at one line.
void BMenuItem::DrawShortcut() {
    const float left = Frame().right + 1 - kShortcutRight - fShortcutWidth;
    fMenu->DrawString(ShortcutLabel(fShortcut, fModifiers).c_str(), BPoint(left, Baseline()));
}

BSeparatorItem::BSeparatorItem()
    : BMenuItem("", nullptr) {}

void BSeparatorItem::GetContentSize(float* width, float* height) {
    *width = 0;
    *height = kSeparatorHeight - kItemTop - kItemBottom;
}

void BSeparatorItem::Draw() {
    BMenu& menu = *Menu();
    const BRect frame = Frame();
    const float middle = std::floor((frame.top + frame.bottom) / 2);
    menu.SetHighColor(tint_color(menu.ViewColor(), B_DARKEN_2_TINT));
    menu.StrokeLine({frame.left + 1, middle}, {frame.right - 1, middle});
    menu.SetHighColor(tint_color(menu.ViewColor(), B_LIGHTEN_2_TINT));
    menu.StrokeLine({frame.left + 1, middle + 1}, {frame.right - 1, middle + 1});
}

char ShortcutCharacter(int32 key, std::string_view bytes) {
    if (const char digit = CharacterIn(kDigits, key))
        return digit;
    if (IsAscii(bytes))
        return ToLower(bytes[0]);
    for (const KeyRow& row : kLetters) {
        if (const char letter = CharacterIn(row, key))
            return letter;
    }
    return 0;
}

std::string ShortcutLabel(char shortcut, uint32 modifiers) {
    std::string label;
    if (modifiers & B_CONTROL_KEY)
        label += "Ctrl+";
    if (modifiers & B_COMMAND_KEY)
        label += "Alt+";
    if (modifiers & B_SHIFT_KEY)
        label += "Shift+";
    return label + ToUpper(shortcut);
}

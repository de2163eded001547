#include "kits/interface/menus/Menu.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/draw/Canvas.h"
#include "kits/app/Message.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/menus/MenuField.h"
#include "kits/interface/menus/MenuPlacement.h"
#include "kits/interface/menus/MenuTracker.h"
#include "kits/interface/menus/MenuWindow.h"

BMenu::BMenu(const char* name, menu_layout)
    : BMenu(BRect(0, 0, 0, 0), name, B_FOLLOW_NONE, B_WILL_DRAW) {}

BMenu::BMenu(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
    : BView(frame, name, resizingMode, flags) {
    SetViewColor(ui_color(B_MENU_BACKGROUND_COLOR));
    BView::SetFont(be_plain_font);
}

BMenu::~BMenu() {
    while (!fItems.empty())
        delete RemoveItem(CountItems() - 1);
}

bool BMenu::AddItem(BMenuItem* item) {
    return AddItem(item, CountItems());
}

bool BMenu::AddItem(BMenuItem* item, int32 index) {
    if (!item || item->fMenu || index < 0 || index > CountItems())
        return false;
    item->fMenu = this;
    item->fMeasured = false;
    fItems.insert(fItems.begin() + index, item);
    ItemChanged(true);
    return true;
}

bool BMenu::AddItem(BMenu* submenu) {
    return AddItem(submenu, CountItems());
}

bool BMenu::AddItem(BMenu* submenu, int32 index) {
    if (!submenu || submenu->fSuperitem || index < 0 || index > CountItems())
        return false;
    return AddItem(new BMenuItem(submenu), index);
}

bool BMenu::AddSeparatorItem() {
    return AddItem(new BSeparatorItem);
}

bool BMenu::RemoveItem(BMenuItem* item) {
    return RemoveItem(IndexOf(item)) != nullptr;
}

BMenuItem* BMenu::RemoveItem(int32 index) {
    BMenuItem* item = ItemAt(index);
    if (!item)
        return nullptr;
    fItems.erase(fItems.begin() + index);
    if (fSelected == item)
        fSelected = nullptr;
    item->fMenu = nullptr;
    ItemChanged(true);
    return item;
}

BMenuItem* BMenu::ItemAt(int32 index) const {
    return index >= 0 && index < CountItems() ? fItems[static_cast<size_t>(index)] : nullptr;
}

int32 BMenu::IndexOf(BMenuItem* item) const {
    auto found = std::find(fItems.begin(), fItems.end(), item);
    return found == fItems.end() ? B_ERROR : static_cast<int32>(found - fItems.begin());
}

BMenuItem* BMenu::FindMarked() {
    auto found = std::find_if(fItems.begin(), fItems.end(),
                              [](const BMenuItem* item) { return item->IsMarked(); });
    return found == fItems.end() ? nullptr : *found;
}

status_t BMenu::SetTargetForItems(const BMessenger& target) {
    status_t result = B_OK;
    for (BMenuItem* item : fItems) {
        status_t status = item->SetTarget(target);
        if (result == B_OK)
            result = status;
    }
    return result;
}

void BMenu::PrepareLayout() {
    if (Window())
        return; // it is open
    Layout();
    BMenuWindow::Prepare(*this);
    for (const BMenuItem* item : fItems) {
        if (item->fSubmenu)
            item->fSubmenu->PrepareLayout();
    }
}

void BMenu::KeyDown(const char* bytes, int32 numBytes) {
    if (fTracker)
        fTracker->KeyDown(*this, bytes, numBytes);
}

void BMenu::Hide() {
    if (fTracker)
        fTracker->Cancel();
    else
        BView::Hide();
}

void BMenu::Draw(BRect updateRect) {
    fDrawing = true;
    const BRect shown = Viewport();
    for (BMenuItem* item : fItems) {
        const BRect frame = item->Frame();
        if (frame.Intersects(updateRect) && frame.Intersects(shown))
            item->Draw();
    }
    DrawFrame();
    fDrawing = false;
}

void BMenu::SetFont(const BFont* font, uint32 mask) {
    BView::SetFont(font, mask);
    // An item that draws itself in a font of its own changes no other item's size.
    if (fDrawing)
        return;
    for (BMenuItem* item : fItems)
        item->fMeasured = false;
    ItemChanged(true);
}

void BMenu::DrawFrame() {
    const BRect bounds = Bounds();
    if (NeedsScrolling()) {
        const BRect items = Viewport();
        DrawScrollArrow({items.left, bounds.top + kMenuInset, items.right, items.top - 1}, true);
        DrawScrollArrow({items.left, items.bottom + 1, items.right, bounds.bottom - kMenuInset},
                        false);
    }
    SetHighColor(tint_color(ViewColor(), B_DARKEN_4_TINT));
    StrokeRect(bounds);
    const BRect bevel = bounds.InsetByCopy(1, 1);
    SetHighColor(tint_color(ViewColor(), B_LIGHTEN_2_TINT));
    StrokeLine(bevel.LeftBottom(), bevel.LeftTop());
    StrokeLine(bevel.RightTop());
    SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
    StrokeLine(bevel.RightTop() + BPoint(0, 1), bevel.RightBottom());
    StrokeLine(bevel.LeftBottom() + BPoint(1, 0));
}

void BMenu::DrawScrollArrow(BRect frame, bool up) {
    const bool more = up ? fScroll > 0 : fScroll < MaxScroll();
    SetHighColor(ViewColor());
    FillRect(frame);
    SetHighColor(more ? ui_color(B_MENU_ITEM_TEXT_COLOR)
                      : tint_color(ViewColor(), B_DARKEN_1_TINT));
    const BPoint middle(std::floor((frame.left + frame.right) / 2),
                        std::floor((frame.top + frame.bottom) / 2));
    const float tip = up ? -2 : 2;
    const BPoint arrow[] = {middle + BPoint(-5, -tip), middle + BPoint(0, 1.5f * tip),
                            middle + BPoint(5, -tip)};
    FillPolygon(arrow, 3);
}

void BMenu::ItemChanged(bool size) {
    const bool wasLaidOut = fLaidOut;
    fDrawnIn = nullptr;
    if (size)
        fLaidOut = false;
    if (fField)
        fField->Invalidate();
    if (!Window())
        return;
    Invalidate();
    if (size && wasLaidOut)
        Window()->PostMessage(BMenuWindow::kMenuChanged);
}

void BMenu::ItemMarked(BMenuItem* marked) {
    if (fRadioMode) {
        for (BMenuItem* item : fItems) {
            if (item != marked)
                item->SetMarked(false);
        }
    }
    if (fLabelFromMarked && fSuperitem)
        fSuperitem->SetLabel(marked->Label());
}

void BMenu::GiveDefaultTarget(const BMessenger& target) {
    for (BMenuItem* item : fItems) {
        if (!item->Messenger().IsValid())
            item->SetTarget(target);
        if (item->fSubmenu)
            item->fSubmenu->GiveDefaultTarget(target);
    }
}

bool BMenu::InvokeShortcut(const BMessage& keyDown, const BMessenger& window) {
    constexpr uint32 kModifiers = B_COMMAND_KEY | B_SHIFT_KEY | B_CONTROL_KEY | B_OPTION_KEY;
    uint32 held = static_cast<uint32>(keyDown.GetInt32("modifiers", 0)) & kModifiers;
    const char character =
        ShortcutCharacter(keyDown.GetInt32("key", 0), keyDown.GetString("bytes", ""));
    // Some window managers keep Alt with a digit to themselves.
    if ((held & (B_COMMAND_KEY | B_CONTROL_KEY)) == B_CONTROL_KEY && character >= '0' &&
        character <= '9')
        held ^= B_COMMAND_KEY | B_CONTROL_KEY;
    if ((held & B_COMMAND_KEY) == 0 || character == 0)
        return false;
    BMenuItem* item = ItemOfShortcut(character, held);
    if (item == nullptr)
        return false;
    GiveDefaultTarget(window);
    if (item->IsSelectable() && !keyDown.HasInt32("be:key_repeat"))
        item->Invoke();
    return true;
}

BMenuItem* BMenu::ItemOfShortcut(char character, uint32 modifiers) const {
    for (BMenuItem* item : fItems) {
        if (item->fShortcut != 0 && item->fModifiers == modifiers && item->fShortcut == character)
            return item;
        BMenuItem* below =
            item->fSubmenu ? item->fSubmenu->ItemOfShortcut(character, modifiers) : nullptr;
        if (below)
            return below;
    }
    return nullptr;
}

BMenuItem* BMenu::NextSelectable(int32 index, int32 step) const {
    const int32 count = CountItems();
    for (int32 tries = 0; tries < count; tries++) {
        index = (index + step + count) % count;
        if (ItemAt(index)->IsSelectable())
            return ItemAt(index);
    }
    return nullptr;
}

void BMenu::Select(BMenuItem* item) {
    if (item == fSelected)
        return;
    BMenuItem* before = std::exchange(fSelected, item);
    if (before)
        before->Highlight(false);
    if (item)
        item->Highlight(true);
}

void BMenu::Layout() {
    const double scale = DisplayScale();
    if (scale != std::exchange(fScale, scale)) {
        for (BMenuItem* item : fItems)
            item->fMeasured = false;
    } else if (fLaidOut) {
        return;
    }
    fLaidOut = true;
    fDrawnIn = nullptr;
    float width = 0;
    float top = 0;
    fShortcutWidth = 0;
    for (BMenuItem* item : fItems) {
        item->Measure();
        width = std::max(width, item->fContentWidth);
        fShortcutWidth = std::max(fShortcutWidth, item->fShortcutWidth);
        item->fTop = top;
        top += item->fHeight;
    }
    fContentWidth = width + kItemLeft + RoomBehindLabels() + 2 * kMenuInset;
    fContentHeight = top + 2 * kMenuInset;
    if (Window() == nullptr)
        ResizeTo(fContentWidth - 1, fContentHeight - 1);
}

float BMenu::RoomBehindLabels() const {
    return fShortcutWidth == 0
               ? kItemRight
               : std::max(kItemRight, kShortcutGap + fShortcutWidth + kShortcutRight);
}

bool BMenu::NeedsScrolling() const {
    return Bounds().Height() + 1 < fContentHeight;
}

// Where items are seen.
BRect BMenu::Viewport() const {
    const float arrow = NeedsScrolling() ? kScrollArrowHeight : 0;
    return Bounds().InsetByCopy(kMenuInset, kMenuInset + arrow);
}

float BMenu::MaxScroll() const {
    return std::max(0.0f, fContentHeight - 2 * kMenuInset - (Viewport().Height() + 1));
}

bool BMenu::ScrollTo(float offset) {
    offset = std::round(std::clamp(offset, 0.0f, MaxScroll()));
    if (offset == fScroll)
        return false;
    fScroll = offset;
    Invalidate();
    return true;
}

void BMenu::ScrollToShow(const BMenuItem& item) {
    const float lowest = item.fTop + item.fHeight - (Viewport().Height() + 1);
    ScrollTo(std::min(std::max(fScroll, lowest), item.fTop));
}

BMenu::Part BMenu::PartAt(BPoint where) const {
    if (!Bounds().Contains(where))
        return Part::None;
    const BRect items = Viewport();
    if (NeedsScrolling() && where.y < items.top)
        return Part::UpArrow;
    if (NeedsScrolling() && where.y > items.bottom)
        return Part::DownArrow;
    return Part::Items;
}

BMenuItem* BMenu::SelectableAt(BPoint where) const {
    if (PartAt(where) != Part::Items)
        return nullptr;
    for (BMenuItem* item : fItems) {
        const BRect frame = item->Frame();
        // The border beside an item counts as the item.
        if (where.y >= frame.top && where.y < frame.bottom + 1)
            return item->IsSelectable() ? item : nullptr;
    }
    return nullptr;
}

#include "kits/interface/menus/MenuField.h"

#include <algorithm>
#include <cmath>

#include "kits/app/Message.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuPlacement.h"
#include "kits/interface/menus/MenuTracker.h"
#include "kits/interface/window/Control.h"
#include "kits/interface/window/Window.h"

namespace {

constexpr float kTextLeft = 4;   // of the box's text, in the box
constexpr float kArrowRoom = 13; // on the right of the box, the gap before it included
constexpr float kArrowWidth = 6;

} // namespace

BMenuField::BMenuField(BRect frame, const char* name, const char* label, BMenu* menu,
                       bool fixedSize, uint32 resizingMode, uint32 flags)
    : BView(frame, name, resizingMode, flags | B_FULL_UPDATE_ON_RESIZE)
    , fLabel(label ? label : "")
    , fMenu(menu)
    , fFixedSize(fixedSize)
    , fDivider(fLabel.empty() ? 0 : std::floor(Frame().Width() / 2)) {
    fMenu->fField = this;
}

BMenuField::~BMenuField() {
    fMenu->fField = nullptr;
    delete fMenu;
}

void BMenuField::SetDivider(float divider) {
    fDivider = std::clamp(std::floor(divider), 0.0f, Bounds().Width());
    Invalidate();
}

std::string BMenuField::ShownLabel() const {
    const BMenuItem* marked = fMenu->IsLabelFromMarked() ? fMenu->FindMarked() : nullptr;
    return marked ? marked->Label() : fMenu->Name();
}

float BMenuField::RoomForShownLabel() const {
    return Bounds().right + 1 - fDivider - kTextLeft - kArrowRoom;
}

BRect BMenuField::BoxFrame() const {
    BRect box = Bounds();
    box.left += fDivider;
    if (!fFixedSize) {
        const float width = std::ceil(fMenu->StringWidth(ShownLabel().c_str()));
        box.right = std::min(box.right, box.left + kTextLeft + width + kArrowRoom - 1);
    }
    return box;
}

void BMenuField::AttachedToWindow() {
    if (Parent() != nullptr)
        SetViewColor(Parent()->ViewColor());
}

void BMenuField::Draw(BRect) {
    BFont own;
    GetFont(&own);
    SetHighColor(0, 0, 0);
    DrawLabel(*this, LabelFont(own, fLabel.c_str(), fDivider), fLabel, fDivider,
              BPoint(0, BaselineIn(Bounds(), own)));
    DrawBox(BoxFrame());
}

void BMenuField::DrawBox(BRect box) {
    const rgb_color text = HighColor();
    const BRect inside = box.InsetByCopy(1, 1);
    SetHighColor(IsFocus() ? kFocusColor : tint_color(ViewColor(), B_DARKEN_3_TINT));
    StrokeRect(box);
    SetHighColor(tint_color(ViewColor(), B_LIGHTEN_1_TINT));
    FillRect(inside);
    SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
    StrokeLine(inside.RightTop(), inside.RightBottom());
    StrokeLine(inside.LeftBottom());

    SetHighColor(text);
    const float middle = std::floor((box.top + box.bottom) / 2);
    const float right = box.right - 3;
    const BPoint arrow[] = {{right - kArrowWidth, middle - 1},
                            {right, middle - 1},
                            {right - kArrowWidth / 2, middle + 2}};
    FillPolygon(arrow, 3);

    BFont font;
    fMenu->GetFont(&font);
    const std::string shown = ShownLabel();
    font = LabelFont(font, shown.c_str(), RoomForShownLabel());
    DrawLabel(*this, font, shown, RoomForShownLabel(),
              BPoint(box.left + kTextLeft, BaselineIn(box, font)));
}

void BMenuField::MouseDown(BPoint where) {
    BMessage* message = Window()->CurrentMessage();
    const bool isPrimary =
        !message || (message->GetInt32("buttons", B_PRIMARY_MOUSE_BUTTON) & B_PRIMARY_MOUSE_BUTTON);
    if (isPrimary && BoxFrame().Contains(where))
        OpenMenu();
}

void BMenuField::KeyDown(const char* bytes, int32 numBytes) {
    if (numBytes == 1 && (bytes[0] == B_SPACE || bytes[0] == B_DOWN_ARROW))
        OpenMenu();
    else
        BView::KeyDown(bytes, numBytes);
}

void BMenuField::MakeFocus(bool focus) {
    BView::MakeFocus(focus);
    Invalidate();
}

bool BMenuField::HandleShortcut(const BMessage& keyDown) {
    return fMenu->InvokeShortcut(keyDown, BMessenger(Window()));
}

void BMenuField::OpenMenu() {
    if (fMenu->CountItems() == 0)
        return;
    fMenu->GiveDefaultTarget(BMessenger(Window()));
    fMenu->Layout();
    BMenuItem* marked = fMenu->FindMarked();
    const BMenuItem& over = marked ? *marked : *fMenu->ItemAt(0);
    const BRect box = ConvertToScreen(BoxFrame());
    const float above = over.fTop + kMenuInset - std::floor((box.Height() + 1 - over.fHeight) / 2);
    const auto tracker =
        MenuTracker::Open(*fMenu, box.LeftTop() - BPoint(0, above), true, false, marked);
    BMenuItem* chosen = tracker ? tracker->Wait() : nullptr;
    if (chosen)
        chosen->Invoke();
}

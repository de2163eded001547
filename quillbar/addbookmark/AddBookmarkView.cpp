#include "quillbar/addbookmark/AddBookmarkView.h"

#include "kits/app/Message.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/menus/MenuField.h"
#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "quillbar/addbookmark/BrowseView.h"
#include "quillbar/addbookmark/EditInfoView.h"
#include "quillbar/addbookmark/LocationView.h"
#include "quillbar/base/Commands.h"

namespace {

constexpr uint32 kLeftTop = B_FOLLOW_LEFT | B_FOLLOW_TOP;
constexpr uint32 kBoxFlags = B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE_JUMP;

constexpr float kButtonEdges = 12; // left and right of a button's label, together
constexpr float kLabelGap = 3;     // behind the label of a field

struct FixedLabel {
    const char* text;
    float room;
};

} // namespace

QBAddBookmarkView::QBAddBookmarkView(BRect frame, const char* name, uint32 resizingMode,
                                     uint32 flags)
    : BView(frame, name, resizingMode, flags)
    , fShowInTracker(nullptr)
    , fCancel(nullptr)
    , fAdd(nullptr)
    , fLocation(nullptr)
    , fBrowse(nullptr)
    , fEditInfo(nullptr) {}

QBAddBookmarkView::~QBAddBookmarkView() = default;

void QBAddBookmarkView::MessageReceived(BMessage* message) {
    BView::MessageReceived(message);
}

void QBAddBookmarkView::InitView() {
    fLocation = new QBLocationView(BRect(10, 220, 320, 310), "qb_location", kLeftTop, kBoxFlags,
                                   B_FANCY_BORDER);
    fLocation->SetLabel("3. Choose the location");
    fLocation->InitView();
    AddChild(fLocation);

    fBrowse = new QBBrowseView(BRect(10, 130, 320, 210), "qb_browse", kLeftTop, kBoxFlags,
                               B_FANCY_BORDER);
    fBrowse->SetLabel("2. Browse for empty slot");
    fBrowse->InitView();
    AddChild(fBrowse);

    fEditInfo = new QBEditInfoView(BRect(10, 10, 320, 122), "qb_editinfo", kLeftTop, kBoxFlags,
                                   B_FANCY_BORDER);
    fEditInfo->SetLabel("1. Edit Info");
    fEditInfo->InitView();
    AddChild(fEditInfo);

    fShowInTracker = AddButton(BRect(10, 320, 105, 350), "qb_abview_showintracker",
                               "Show In Tracker", kQBShowInTracker);
    fCancel = AddButton(BRect(115, 320, 210, 350), "qb_abview_cancel", "Cancel", kQBCancelAdd);
    // With the room for the frame of a default button.
    fAdd = AddButton(BRect(217, 317, 318, 353), "qb_abview_add", "Add It!", kQBAddIt);
    fAdd->MakeDefault(true);

    SetViewColor(216, 216, 216, 255);
    FitLabels();
}

BButton* QBAddBookmarkView::AddButton(BRect frame, const char* name, const char* label,
                                      uint32 command) {
    auto* button =
        new BButton(frame, name, label, new BMessage(command), kLeftTop, B_WILL_DRAW | B_NAVIGABLE);
    AddChild(button);
    return button;
}

// The rooms are the same whatever font the desktop has, so its size follows from the widest label.
// All labels have one size.
void QBAddBookmarkView::FitLabels() {
    BTextControl* const texts[] = {fEditInfo->fNameText, fEditInfo->fUrlText,
                                   fEditInfo->fKeywordsText, fLocation->fKeyword};
    BMenuField* const fields[] = {fLocation->fFolderField, fLocation->fSlotField};
    BButton* const buttons[] = {fShowInTracker, fCancel, fAdd};
    std::vector<FixedLabel> labels;
    for (BTextControl* text : texts)
        labels.push_back({text->Label(), text->Divider() - kLabelGap});
    for (BMenuField* field : fields)
        labels.push_back({field->Label(), field->Divider() - kLabelGap});
    for (BButton* button : buttons)
        labels.push_back({button->Label(), button->Bounds().Width() - kButtonEdges});

    BFont font(be_plain_font);
    for (const FixedLabel& label : labels)
        font = LabelFont(font, label.text, label.room);

    for (BTextControl* text : texts) {
        text->SetFont(&font);
        text->TextView()->SetFont(be_plain_font);
    }
    for (BMenuField* field : fields)
        field->SetFont(&font);
    for (BButton* button : buttons)
        button->SetFont(&font);
}

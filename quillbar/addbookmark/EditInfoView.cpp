#include "quillbar/addbookmark/EditInfoView.h"

#include "kits/interface/text/TextControl.h"

QBEditInfoView::QBEditInfoView(BRect frame, const char* name, uint32 resizingMode, uint32 flags,
                               border_style border)
    : BBox(frame, name, resizingMode, flags, border)
    , fNameText(nullptr)
    , fUrlText(nullptr)
    , fKeywordsText(nullptr) {}

QBEditInfoView::~QBEditInfoView() = default;

void QBEditInfoView::InitView() {
    fNameText = AddText(BRect(10, 20, 295, 40), "qb_editinfo_name", "Name");
    fUrlText = AddText(BRect(10, 50, 295, 70), "qb_editinfo_url", "URL");
    fKeywordsText = AddText(BRect(10, 80, 295, 100), "qb_editinfo_keywords", "Keywords");
}

BTextControl* QBEditInfoView::AddText(BRect frame, const char* name, const char* label) {
    auto* control = new BTextControl(frame, name, label, "", nullptr, B_FOLLOW_LEFT | B_FOLLOW_TOP,
                                     B_WILL_DRAW | B_NAVIGABLE);
    AddChild(control);
    control->SetDivider(55);
    return control;
}

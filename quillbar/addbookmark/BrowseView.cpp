#include "quillbar/addbookmark/BrowseView.h"

#include "kits/app/Message.h"
#include "kits/interface/controls/Button.h"
#include "kits/support/String.h"
#include "quillbar/base/Commands.h"

QBBrowseView::QBBrowseView(BRect frame, const char* name, uint32 resizingMode, uint32 flags,
                           border_style border)
    : BBox(frame, name, resizingMode, flags, border)
    , fButtons{} {}

QBBrowseView::~QBBrowseView() = default;

void QBBrowseView::MessageReceived(BMessage*) {}

void QBBrowseView::InitView() {
    for (int32 digit = 0; digit < 10; ++digit) {
        BString name("qb_browse_button");
        name << digit;
        BString label;
        label << digit;
        const float left = 34 + 20 * static_cast<float>(digit);
        auto* button =
            new BButton(BRect(left, 32, left + 20, 52), name.String(), label.String(), nullptr,
                        B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW | B_NAVIGABLE);
        AddChild(button);
        auto* message = new BMessage(QBFolder[digit]);
        message->AddPointer("button", button);
        button->SetMessage(message);
        button->SetFont(be_bold_font, B_FONT_ALL);
        fButtons[digit] = button;
    }
}

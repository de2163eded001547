#include "kits/app/Message.h"
#include "kits/app/Roster.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/Clipboard.h"
#include "quillbar/about/URLView.h"

namespace {

constexpr float kMenuAbovePointer = 6;

// The desktop's program for one kind of links.
struct Opener {
    const char* type;
    const char* itemLabel; // the program's name follows
    const char* alertTitle;
    const char* alertText;
};

constexpr Opener kMail = {"text/x-email", "Send e-mail to this address using ", "E-mail Warning",
                          "There is no e-mail program on your machine that is configured as the "
                          "default program to send e-mail."};
constexpr Opener kFTP = {"application/x-vnd.Be.URL.ftp", "Connect to this server using ",
                         "FTP Warning",
                         "There is no FTP client on your machine that is configured as the default "
                         "program to connect to an FTP server."};
constexpr Opener kWeb = {"text/html", "Open this link using ", "Web Browser Warning",
                         "There is no web browser on your machine that is configured as the "
                         "default program to view web pages."};

constexpr const char* kCopyLabel = "Copy this link to the clipboard";

} // namespace

// The items carry no messages: the chosen label decides the action.
std::unique_ptr<BPopUpMenu> URLView::CreatePopupMenu() const {
    auto menu = std::make_unique<BPopUpMenu>("URLView Popup", false, false, B_ITEMS_IN_COLUMN);
    menu->SetAsyncAutoDestruct(true);
    const Opener& opener = IsEmailLink() ? kMail : IsFTPLink() ? kFTP : kWeb;
    if (be_roster->FindApp(opener.type) == B_OK) {
        const BString label = BString(opener.itemLabel) + be_roster->NameOf(opener.type);
        menu->AddItem(new BMenuItem(label.String(), nullptr));
    }
    menu->AddItem(new BMenuItem(kCopyLabel, nullptr));
    return menu;
}

void URLView::ChooseFromMenu(BPoint where) {
    const std::unique_ptr<BPopUpMenu> menu = CreatePopupMenu();
    const BPoint corner = ConvertToScreen(where - BPoint(0, kMenuAbovePointer));
    const BMenuItem* chosen = menu->Go(corner, false, true, false);
    if (!chosen) {
        ShowColor(fColor);
        return;
    }
    if (BString(chosen->Label()) == kCopyLabel)
        CopyToClipboard();
    else
        LaunchURL();
}

void URLView::LaunchURL() const {
    const Opener* opener = IsEmailLink()  ? &kMail
                           : IsHTMLLink() ? &kWeb
                           : IsFTPLink()  ? &kFTP
                                          : nullptr;
    if (!opener)
        return;
    const char* const arguments[] = {fURL.String()};
    const status_t status = be_roster->Launch(opener->type, std::size(arguments), arguments);
    if (status == B_OK || status == B_ALREADY_RUNNING)
        return;
    (new BAlert(opener->alertTitle, opener->alertText, "Ok", nullptr, nullptr, B_WIDTH_AS_USUAL,
                B_WARNING_ALERT))
        ->Go();
}

void URLView::CopyToClipboard() const {
    BClipboard clipboard("system");
    const BString text = GetImportantURL();
    if (!clipboard.Lock())
        return;
    clipboard.Clear();
    if (BMessage* data = clipboard.Data()) {
        data->AddData("text/plain", B_MIME_TYPE, text.String(), text.Length() + 1, true, 1);
        clipboard.Commit();
    }
    clipboard.Unlock();
}

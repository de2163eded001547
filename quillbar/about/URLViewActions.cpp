#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/Roster.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/Clipboard.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "quillbar/about/URLView.h"

namespace {

constexpr float kMenuAbovePointer = 6;

constexpr const char* kMailType = "text/x-email";
constexpr const char* kWebType = "text/html";
constexpr const char* kFTPType = "application/x-vnd.Be.URL.ftp";

// The desktop's program for one kind of links.
struct Opener {
    const char* type;
    const char* itemLabel; // the program's name follows
    const char* alertTitle;
    const char* alertText;
};

constexpr Opener kMail = {kMailType, "Send e-mail to this address using ", "E-mail Warning",
                          "There is no e-mail program on your machine that is configured as the "
                          "default program to send e-mail."};
constexpr Opener kFTP = {kFTPType, "Connect to this server using ", "FTP Warning",
                         "There is no FTP client on your machine that is configured as the default "
                         "program to connect to an FTP server."};
constexpr Opener kWeb = {kWebType, "Open this link using ", "Web Browser Warning",
                         "There is no web browser on your machine that is configured as the "
                         "default program to view web pages."};

constexpr const char* kCopyLabel = "Copy this link to the clipboard";

bool BeginsLaunch(const BString& label) {
    for (const char* verb : {"Open", "Send", "Connect"}) {
        if (label.FindFirst(verb) >= 0)
            return true;
    }
    return false;
}

void WriteText(BNode& node, const char* name, const BString& text) {
    node.WriteAttr(name, B_STRING_TYPE, 0, text.String(), static_cast<size_t>(text.Length()) + 1);
}

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
    const BString label = chosen->Label();
    if (BeginsLaunch(label))
        LaunchURL();
    else if (label.FindFirst("Copy") >= 0)
        CopyToClipboard();
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

// A drop on a file manager is answered with where the file is that the link is to become.
void URLView::MessageReceived(BMessage* message) {
    entry_ref directory;
    const char* name = nullptr;
    if (message->what != B_COPY_TARGET || message->FindRef("directory", &directory) != B_OK ||
        message->FindString("name", &name) != B_OK)
        return;
    const BEntry entry(&directory);
    const BPath folder(&entry);
    const BPath path(folder.Path(), name);
    if (path.InitCheck() != B_OK)
        return;
    if (IsEmailLink())
        CreatePerson(path.Path(), Text());
    else
        CreateBookmark(path.Path(), Text());
}

void URLView::CreateBookmark(const char* path, const char* title) const {
    BFile file(path, B_WRITE_ONLY);
    if (file.InitCheck() != B_OK)
        return;
    BNodeInfo(&file).SetType("application/x-vnd.Be-bookmark");
    WriteText(file, "META:title", title);
    WriteText(file, "META:url", fURL);
    WriteAttributes(file);
}

void URLView::CreatePerson(const char* path, const char* name) const {
    BFile file(path, B_WRITE_ONLY);
    if (file.InitCheck() != B_OK)
        return;
    BNodeInfo(&file).SetType("application/x-person");
    WriteText(file, "META:name", name);
    WriteText(file, "META:email", GetImportantURL());
    WriteAttributes(file);
}

void URLView::WriteAttributes(BNode& node) const {
    for (const auto& [name, value] : fAttributes)
        WriteText(node, name.String(), value);
}

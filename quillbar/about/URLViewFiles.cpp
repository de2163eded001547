#include <initializer_list>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "quillbar/about/URLView.h"

namespace {

void WriteText(BNode& node, const char* name, const BString& text) {
    node.WriteAttr(name, B_STRING_TYPE, 0, text.String(), static_cast<size_t>(text.Length()) + 1);
}

} // namespace

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

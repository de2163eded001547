#include <cmath>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Bitmap.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "quillbar/about/URLView.h"

namespace {

constexpr float kGapBehindIcon = 4;
constexpr uint8 kHalf = 128;

constexpr const char* kBookmarkType = "application/x-vnd.Be-bookmark";
constexpr const char* kPersonType = "application/x-person";

void WriteText(BNode& node, const char* name, const BString& text) {
    node.WriteAttr(name, B_STRING_TYPE, 0, text.String(), static_cast<size_t>(text.Length()) + 1);
}

} // namespace

// A file manager makes a file of these fields; other programs take the text.
void URLView::StartDrag() {
    fDragStarted = true;
    const bool isPerson = IsEmailLink();
    const char* type = isPerson ? kPersonType : kBookmarkType;
    const BString text = GetImportantURL();
    BMessage message(B_MIME_DATA);
    message.AddInt32("be:actions", B_COPY_TARGET);
    message.AddString("be:types", "application/octet-stream");
    message.AddString("be:filetypes", type);
    message.AddString("be:type_descriptions", isPerson ? "person" : "bookmark");
    message.AddString("be:clip_name", Text());
    if (!isPerson)
        message.AddString("be:url", fURL.String());
    message.AddData("text/plain", B_MIME_TYPE, text.String(), text.Length() + 1, true, 1);

    auto image = isPerson ? DrawDragImage(GetTextRect(), type, Text(), false)
                          : DrawDragImage(GetURLRect(), type, fURL, true);
    const float underline = isPerson ? static_cast<float>(fUnderlineThickness) : 0;
    const BPoint hotSpot(fDragPoint.x / GetTextRect().Width() * image->Bounds().right,
                         (image->Bounds().Height() + underline) / 2 + 2);
    DragMessage(&message, image.release(), B_OP_ALPHA, hotSpot, this);
}

// The icon of the file that the link may become, and a text behind it, half transparent. `room` is
// as large as the text.
std::unique_ptr<BBitmap> URLView::DrawDragImage(BRect room, const char* type, const BString& text,
                                                bool underlined) const {
    const auto side = static_cast<float>(fIconSize);
    BRect frame(room.left, 0, room.right + side + kGapBehindIcon, room.Height());
    if (side > frame.Height())
        frame.InsetBy(0, -(std::trunc((side - frame.Height()) / 2) + 1));
    BBitmap icon(BRect(0, 0, side - 1, side - 1), B_CMAP8);
    BMimeType(type).GetIcon(&icon, fIconSize);
    font_height height;
    GetFontHeight(&height);
    const auto thickness = static_cast<float>(fUnderlineThickness);
    const float middle = std::trunc(frame.Height() / 2);
    const float baseline = middle + std::trunc(height.descent + thickness);
    const float textLeft = frame.left + side + kGapBehindIcon;

    auto image = std::make_unique<BBitmap>(frame, B_RGBA32, true);
    auto* view = new BView(image->Bounds(), "Drag View", B_FOLLOW_NONE, 0);
    image->Lock();
    image->AddChild(view);
    view->SetHighColor(B_TRANSPARENT_COLOR);
    view->FillRect(view->Bounds());
    view->SetDrawingMode(B_OP_ALPHA);
    view->SetHighColor(fColor.red, fColor.green, fColor.blue, kHalf);
    view->SetBlendingMode(B_CONSTANT_ALPHA, B_ALPHA_COMPOSITE);
    view->DrawBitmap(&icon, BPoint(frame.left, middle - side / 2));
    BFont font;
    GetFont(&font);
    view->SetFont(&font, B_FONT_ALL);
    view->DrawString(text.String(), BPoint(textLeft, baseline));
    if (underlined) {
        view->FillRect(BRect(textLeft, baseline + 1,
                             side + kGapBehindIcon + StringWidth(text.String()),
                             baseline + thickness));
    }
    image->Unlock();
    return image;
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
    BFile file(path.Path(), B_WRITE_ONLY);
    if (file.InitCheck() != B_OK)
        return;
    const bool isPerson = IsEmailLink();
    BNodeInfo(&file).SetType(isPerson ? kPersonType : kBookmarkType);
    WriteText(file, isPerson ? "META:name" : "META:title", Text());
    WriteText(file, isPerson ? "META:email" : "META:url", GetImportantURL());
    for (const auto& [attribute, value] : fAttributes)
        WriteText(file, attribute.String(), value);
}

#include <cmath>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Bitmap.h"
#include "quillbar/about/URLView.h"

namespace {

constexpr float kGapBehindIcon = 4;
constexpr uint8 kHalf = 128;

constexpr const char* kBookmarkType = "application/x-vnd.Be-bookmark";
constexpr const char* kPersonType = "application/x-person";

// The fields of both kinds of drags, from which a file manager makes a file.
BMessage DragMessageOf(const char* type, const char* description, const char* name) {
    BMessage message(B_MIME_DATA);
    message.AddInt32("be:actions", B_COPY_TARGET);
    message.AddString("be:types", "application/octet-stream");
    message.AddString("be:filetypes", type);
    message.AddString("be:type_descriptions", description);
    message.AddString("be:clip_name", name);
    return message;
}

void AddText(BMessage& message, const BString& text) {
    message.AddData("text/plain", B_MIME_TYPE, text.String(), text.Length() + 1, true, 1);
}

} // namespace

void URLView::DoBookmarkDrag() {
    BMessage message = DragMessageOf(kBookmarkType, "bookmark", Text());
    message.AddString("be:url", fURL.String());
    AddText(message, GetImportantURL());
    auto image = DrawDragImage(GetURLRect(), kBookmarkType, fURL, true);
    const float middle = image->Bounds().Height() / 2;
    Drag(message, std::move(image), middle + 2);
}

void URLView::DoPersonDrag() {
    BMessage message = DragMessageOf(kPersonType, "person", Text());
    AddText(message, GetImportantURL());
    auto image = DrawDragImage(GetTextRect(), kPersonType, Text(), false);
    const float middle = (image->Bounds().Height() + static_cast<float>(fUnderlineThickness)) / 2;
    Drag(message, std::move(image), middle + 2);
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

void URLView::Drag(BMessage& message, std::unique_ptr<BBitmap> image, float hotSpotY) {
    const float part = fDragPoint.x / GetTextRect().Width();
    const BPoint hotSpot(part * image->Bounds().right, hotSpotY);
    DragMessage(&message, image.release(), B_OP_ALPHA, hotSpot, this);
}

#include "quillbar/about/AboutWindow.h"

#include "kits/interface/controls/Box.h"
#include "kits/interface/controls/StringView.h"
#include "kits/interface/drawing/Font.h"
#include "quillbar/about/URLView.h"

namespace {

constexpr float kWidth = 365;
constexpr float kHeight = 204;

// The lines of the about box: the product, the notice, two lines of thanks, who wrote it.
constexpr const char* kAboutInfo[] = {
    "Quillbar",
    "\u00a9 2026 the Quillbar developers",
    "Thanks to all who shaped its design",
    "Icons and design by the Quillbar developers",
    "Code by the Quillbar developers",
};

// The project's own site, and that of its source.
constexpr const char* kURLInfo[] = {
    "http://quillbar.example/",
    "http://quillbar.example/source",
};

constexpr uint32 kFollow = B_FOLLOW_LEFT | B_FOLLOW_TOP;

BStringView* AddLine(BView* parent, BRect frame, const char* name, const char* text) {
    auto* line = new BStringView(frame, name, text, kFollow, B_WILL_DRAW);
    line->SetAlignment(B_ALIGN_CENTER);
    parent->AddChild(line);
    return line;
}

// With any font of the desktop a line that is too long for its place is smaller, not cut.
void Fit(BStringView* line) {
    BFont font;
    line->GetFont(&font);
    font = LabelFont(font, line->Text(), line->Bounds().Width() + 1);
    line->SetFont(&font);
}

} // namespace

QBAboutView::QBAboutView(BRect frame)
    : BView(frame, "qb_about_view", B_FOLLOW_ALL_SIDES, B_WILL_DRAW) {
    InitView();
}

void QBAboutView::InitView() {
    SetViewColor(216, 216, 216);

    fBox = new BBox(BRect(25, 20, 294, 128), "qb_about_view_box", kFollow,
                    B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE_JUMP, B_FANCY_BORDER);
    AddChild(fBox);
    fTitle = AddLine(fBox, BRect(6, 10, 262, 25), "qb_about_view_title", kAboutInfo[0]);
    fTitle->SetFont(be_bold_font, B_FONT_ALL);
    fString1 = AddLine(fBox, BRect(5, 33, 263, 48), "qb_about_view_string1", kAboutInfo[1]);
    fString2 = AddLine(fBox, BRect(5, 52, 263, 67), "qb_about_view_string2", kAboutInfo[2]);
    fString3 = AddLine(this, BRect(32, 142, 290, 157), "qb_about_view_string3", kAboutInfo[3]);
    fString4 = AddLine(this, BRect(29, 165, 287, 180), "qb_about_view_string4", kAboutInfo[4]);
    fURL = new URLView(BRect(86, 78, 194, 93), "qb_about_view_url1", kURLInfo[0], kURLInfo[0],
                       kFollow, B_WILL_DRAW);
    fBox->AddChild(fURL);
    for (BStringView* line : {fTitle, fString1, fString2, fString3, fString4})
        Fit(line);
    Fit(fURL);
}

QBAboutWindow::QBAboutWindow(BRect frame)
    : BWindow(BRect(frame.left, frame.top, frame.left + kWidth, frame.top + kHeight),
              "About Quillbar", B_TITLED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL,
              B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE) {
    InitWindow();
}

void QBAboutWindow::InitWindow() {
    fAboutView = new QBAboutView(BRect(0, 0, Frame().Width(), Frame().Height()));
    AddChild(fAboutView);
}

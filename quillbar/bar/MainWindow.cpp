#include "quillbar/bar/MainWindow.h"

#include "kits/app/Message.h"
#include "kits/app/MessageRunner.h"
#include "kits/app/Messenger.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/kernel/Locker.h"
#include "kits/support/String.h"
#include "quillbar/bar/widgets/Bar.h"
#include "quillbar/bar/widgets/Button.h"
#include "quillbar/base/Settings.h"
#include "quillbar/bubbles/BubbleHelper.h"
#include "quillbar/hotkey/Tracker.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"

SharedMessenger QBMainWindow::fMsgWindow;
QBMonitor* QBMainWindow::fMonitor = nullptr;
BLocker* QBMainWindow::fLocker = nullptr;

namespace {

constexpr uint32 kFlags = B_NOT_RESIZABLE | B_NOT_CLOSABLE | B_NOT_ZOOMABLE |
                          B_WILL_ACCEPT_FIRST_CLICK | B_AVOID_FRONT | B_ASYNCHRONOUS_CONTROLS;
static_assert(kFlags == 0x800F2);

constexpr float kButtonSize = 20;

// Where things are in one of the two layouts.
struct Layout {
    BPoint size;
    BPoint firstButton;
    BPoint step;
};
constexpr float kBarThickness = 14;
const Layout kRow{{232, 24}, {kBarThickness, 0}, {22, 0}};
const Layout kColumn{{21, 263}, {1, kBarThickness}, {0, 25}};

const Layout& LayoutOf(QBAlign align) {
    return align == kQBAlignHorizontal ? kRow : kColumn;
}

BPoint ButtonPlace(const Layout& layout, int digit) {
    const float count = static_cast<float>(digit);
    return layout.firstButton + BPoint(layout.step.x * count, layout.step.y * count);
}

} // namespace

QBMainWindow::QBMainWindow(BRect frame)
    : BWindow(BRect(frame.LeftTop(), frame.LeftTop() + kColumn.size), "Quillbar",
              B_BORDERED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL, kFlags, B_ALL_WORKSPACES) {
    if (gSettings->GetAlign() == kQBAlignHorizontal)
        ResizeTo(kRow.size.x, kRow.size.y);
    if (gSettings->GetOnTop())
        SetFeel(B_FLOATING_ALL_WINDOW_FEEL);
    InitWindow();
}

QBMainWindow::~QBMainWindow() {
    CloseAddWindow();
    fMsgWindow.Clear();
    gSettings->SetPos(Frame().LeftTop());
    delete fBubbles;
    delete fMonitor;
    fMonitor = nullptr;
    delete fLocker;
    fLocker = nullptr;
    delete fSettingsMenu;
}

void QBMainWindow::InitWindow() {
    fMonitor = new QBMonitor(this, BMessenger(this));
    fMsgWindow.Set(BMessenger(this));
    fLocker = new BLocker("store");
    AddViews();
    AcceptLinks();
    fBubbles = new BubbleHelper();
    SetFolderHelp();
    // The first message, handled when the window has been painted.
    PostMessage(kQBPrepareMenus);
    AddChild(new QBTracker());
    if (!ExistNetPos() && !ExistOpera())
        WarnWithoutBrowser();
    fKeyDown = false;
}

void QBMainWindow::AddViews() {
    const rgb_color color = gSettings->GetColor();
    const QBAlign align = gSettings->GetAlign();
    const Layout& layout = LayoutOf(align);

    fBar = new QBBar();
    fSpareRoom = new QBSpareRoom(Bounds(), *fBar);
    AddChild(fSpareRoom);
    fSpareRoom->SetViewColor(color);

    fMainView = new BView(Bounds(), "qb_main_view", B_FOLLOW_NONE, B_WILL_DRAW);
    AddChild(fMainView);
    fMainView->SetViewColor(color);

    fMainView->AddChild(fBar);
    fBar->SetAlign(align);

    for (int digit = 0; digit < 10; ++digit) {
        const BPoint place = ButtonPlace(layout, digit);
        BString label;
        label << static_cast<int32>(digit);
        auto* button =
            new QBButton(BRect(place, place + BPoint(kButtonSize, kButtonSize)), "qb_main_button",
                         label.String(), new BMessage(QBFolder[digit]), B_FOLLOW_NONE, B_WILL_DRAW);
        fMainView->AddChild(button);
        fButtons[digit] = button;
        button->SetTarget(this, nullptr);
        button->SetFont(be_bold_font, B_FONT_ALL);
        button->SetViewColor(color);
    }
}

// The texts are copied: one that has not changed stays.
void QBMainWindow::SetFolderHelp() {
    for (int digit = 0; digit < 10; ++digit) {
        const BString name = fMonitor->fPaths[digit]->Name();
        const char* shown = fBubbles->GetHelp(fButtons[digit]);
        if (!shown || name != shown)
            fBubbles->SetHelp(fButtons[digit], name.String());
    }
}

void QBMainWindow::WarnWithoutBrowser() {
    auto* alert = new BAlert("",
                             "I could not find Opera or NetPositive installed on your system! "
                             "You will not be able to launch any bookmarks!",
                             "Bummer!", nullptr, nullptr, B_WIDTH_AS_USUAL, B_INFO_ALERT);
    alert->Go();
}

void QBMainWindow::HandleAlignChange(QBAlign align) {
    if (align == gSettings->GetAlign())
        return;
    gSettings->SetAlign(align);
    const Layout& layout = LayoutOf(align);
    ResizeTo(layout.size.x, layout.size.y);
    fMainView->ResizeTo(layout.size.x, layout.size.y);
    fBar->SetAlign(align);
    fBar->Invalidate();
    for (int digit = 0; digit < 10; ++digit)
        fButtons[digit]->MoveTo(ButtonPlace(layout, digit));
}

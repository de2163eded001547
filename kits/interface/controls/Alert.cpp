#include "kits/interface/controls/Alert.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <future>

#include "kits/app/AppDefs.h"
#include "kits/app/Invoker.h"
#include "kits/app/Message.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/controls/ScrolledText.h"
#include "kits/interface/text/TextView.h"
#include "kits/interface/window/KeyWatchers.h"
#include "kits/interface/window/Screen.h"
#include "kits/interface/window/WindowRoster.h"
#include "kits/interface/window/WindowState.h"

namespace {

constexpr uint32 kButtonPressed = '_kab'; // "which" int32

constexpr float kUsualWidth = 310;
constexpr float kUsualButtonWidth = 81;
constexpr float kMargin = 12;
constexpr float kButtonMargin = 7;
constexpr float kTextLeft = 60; // beside the picture
constexpr float kPictureHeight = 32;

constexpr float kStripRight = 29;
// Pictures are 32 pixels wide and high.
const BPoint kPictureOrigin(14, 12);

constexpr rgb_color kBlack{0, 0, 0, 255};
constexpr rgb_color kWhite{255, 255, 255, 255};
constexpr rgb_color kShadow{150, 150, 150, 255};

// The background of an alert: the darker strip at the left with the picture of its type.
class AlertIcon : public BView {
public:
    AlertIcon(BRect frame, alert_type type);

    void Draw(BRect updateRect) override;

private:
    void Polygon(std::initializer_list<BPoint> points, rgb_color color);
    void Ellipse(BRect frame, rgb_color color);
    void Rect(BRect rect, rgb_color color);

    void DrawInfo();
    void DrawWarning();
    void DrawStop();

    const alert_type fType;
};

AlertIcon::AlertIcon(BRect frame, alert_type type)
    : BView(frame, "alert", B_FOLLOW_ALL, B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE)
    , fType(type) {
    SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
}

void AlertIcon::Draw(BRect) {
    SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
    FillRect({0, 0, kStripRight, Bounds().bottom});
    switch (fType) {
    case B_INFO_ALERT:
        DrawInfo();
        break;
    case B_WARNING_ALERT:
        DrawWarning();
        break;
    case B_STOP_ALERT:
        DrawStop();
        break;
    }
}

void AlertIcon::Polygon(std::initializer_list<BPoint> points, rgb_color color) {
    std::vector<BPoint> moved;
    for (BPoint point : points)
        moved.push_back(point + kPictureOrigin);
    SetHighColor(color);
    FillPolygon(moved.data(), static_cast<int32>(moved.size()));
}

void AlertIcon::Ellipse(BRect frame, rgb_color color) {
    SetHighColor(color);
    FillEllipse(frame.OffsetByCopy(kPictureOrigin));
}

void AlertIcon::Rect(BRect rect, rgb_color color) {
    SetHighColor(color);
    FillRect(rect.OffsetByCopy(kPictureOrigin));
}

void AlertIcon::DrawInfo() {
    Ellipse({2, 2, 31, 31}, kShadow);
    Ellipse({0, 0, 29, 29}, {16, 44, 110, 255});
    Ellipse({1, 1, 28, 28}, {52, 102, 196, 255});
    Ellipse({12, 5, 17, 10}, kWhite);
    Rect({10, 12, 16, 14}, kWhite);
    Rect({13, 12, 17, 22}, kWhite);
    Rect({10, 22, 20, 24}, kWhite);
}

void AlertIcon::DrawWarning() {
    Polygon({{17, 3}, {31, 30}, {3, 30}}, kShadow);
    Polygon({{15, 0}, {30, 28}, {0, 28}}, {122, 70, 0, 255});
    Polygon({{15, 3}, {28, 27}, {2, 27}}, {255, 190, 30, 255});
    Polygon({{13, 10}, {17, 10}, {16, 19}, {14, 19}}, kBlack);
    Rect({13, 22, 17, 25}, kBlack);
}

void AlertIcon::DrawStop() {
    Polygon({{11, 2}, {22, 2}, {31, 11}, {31, 22}, {22, 31}, {11, 31}, {2, 22}, {2, 11}}, kShadow);
    Polygon({{9, 0}, {20, 0}, {29, 9}, {29, 20}, {20, 29}, {9, 29}, {0, 20}, {0, 9}},
            {104, 0, 0, 255});
    Polygon({{9, 1}, {20, 1}, {28, 9}, {28, 20}, {20, 28}, {9, 28}, {1, 20}, {1, 9}},
            {214, 20, 20, 255});
    Polygon({{8, 10}, {10, 8}, {21, 19}, {19, 21}}, kWhite);
    Polygon({{19, 8}, {21, 10}, {10, 21}, {8, 19}}, kWhite);
}

} // namespace

// Outlives the alert: a thread may wait in Go().
struct BAlert::Answer {
    // False for all answers but the first.
    bool Give(int32 answer) {
        if (isGiven.exchange(true))
            return false;
        which.set_value(answer);
        return true;
    }

    std::atomic<bool> isGiven = false;
    std::promise<int32> which;
};

BAlert::BAlert(const char* title, const char* text, const char* button1, const char* button2,
               const char* button3, button_width, alert_type type)
    : BWindow(BRect(0, 0, kUsualWidth, 100), title, B_MODAL_WINDOW_LOOK, B_MODAL_APP_WINDOW_FEEL,
              B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE)
    , fAnswer(std::make_shared<Answer>()) {
    auto* background = new AlertIcon(Bounds(), type);
    AddChild(background);
    fTextView = new BTextView(BRect(0, 0, 0, 0), "text", BRect(0, 0, kUsualWidth, 0), B_FOLLOW_NONE,
                              B_WILL_DRAW);
    fTextView->SetViewColor(background->ViewColor());
    fTextView->SetText(text);
    fPane = new ScrolledText(fTextView);
    background->AddChild(fPane);
    for (const char* label : {button1, button2, button3}) {
        if (label == nullptr || label[0] == '\0')
            continue;
        auto* message = new BMessage(kButtonPressed);
        message->AddInt32("which", fButtonCount);
        auto* button = new BButton(BRect(0, 0, 0, 0), "button", label, message, B_FOLLOW_NONE);
        background->AddChild(button);
        fButtons[fButtonCount++] = button;
    }
    if (fButtonCount > 0)
        SetDefaultButton(fButtons[fButtonCount - 1]);
}

BAlert::~BAlert() {
    WindowRoster::Shared().RemoveAlert(this);
    fAnswer->Give(-1);
}

int32 BAlert::Go() {
    // The alert may be gone when Open() returns.
    std::shared_ptr<Answer> answer = fAnswer;
    KeyWatchers::Shared().SetWaiting(true);
    Open();
    const int32 which = answer->which.get_future().get();
    KeyWatchers::Shared().SetWaiting(false);
    return which;
}

status_t BAlert::Go(BInvoker* invoker) {
    fInvoker = invoker;
    return Open() ? B_OK : B_NOT_ALLOWED;
}

bool BAlert::Open() {
    if (!fState->host || !WindowRoster::Shared().AddAlert(this)) {
        Quit();
        return false;
    }
    LayOut();
    Show();
    return true;
}

void BAlert::MessageReceived(BMessage* message) {
    if (message->what == kButtonPressed)
        Close(message->GetInt32("which", -1));
    else
        BWindow::MessageReceived(message);
}

void BAlert::DispatchMessage(BMessage* message, BHandler* handler) {
    const char key = message->what == B_KEY_DOWN ? message->GetString("bytes", "")[0] : '\0';
    if (key == B_ESCAPE && fButtonCount == 1 && !message->HasInt32("be:key_repeat"))
        fButtons[0]->Invoke();
    else if (!fPane->ScrollByKey(key))
        BWindow::DispatchMessage(message, handler);
}

bool BAlert::QuitRequested() {
    Close(-1);
    return false;
}

// The thread that waited may open a menu or the next alert at once: this one goes first.
void BAlert::Close(int32 which) {
    WindowRoster::Shared().RemoveAlert(this);
    fState->host->Hide();
    if (fAnswer->Give(which) && which >= 0 && fInvoker != nullptr &&
        fInvoker->Message() != nullptr) {
        BMessage message(*fInvoker->Message());
        message.AddInt32("which", which);
        fInvoker->Invoke(&message);
    }
    Quit();
}

void BAlert::LayOut() {
    host::PixelRect main = WindowRoster::Shared().MainFrame();
    BRect monitor = BScreen().Frame();
    if (!main.IsEmpty()) {
        double scale = fState->scale;
        monitor = BScreen::MonitorFrame(
            BPoint(static_cast<float>((main.left + main.right) / 2.0 / scale),
                   static_cast<float>((main.top + main.bottom) / 2.0 / scale)));
    }
    const float maxWidth = monitor.Width() - 40;
    const float maxHeight = monitor.Height() - 60;

    float buttonHeight = 0;
    float row = SizeButtons(maxWidth, &buttonHeight);
    const float around = 2 * kMargin + buttonHeight + kButtonMargin;
    float width = std::min(std::max(kUsualWidth, row), maxWidth);
    float textHeight = 0;
    // A long text gets a wider alert before it gets a high one.
    for (float wider : {width, 450.0f, 600.0f, maxWidth}) {
        width = std::clamp(wider, width, maxWidth);
        fTextView->SetTextRect({0, 0, width - kTextLeft - kMargin, 0});
        textHeight = std::max(std::ceil(fTextView->TextHeight()), kPictureHeight);
        if (textHeight + around <= std::min(0.7f * width, maxHeight))
            break;
    }
    textHeight = std::min(textHeight, maxHeight - around);

    ResizeTo(width, textHeight + around);
    fPane->MoveTo(kTextLeft, kMargin);
    fPane->ResizeTo(width - kTextLeft - kMargin, textHeight);
    fPane->LayOut();
    float right = width - kButtonMargin;
    for (int32 i = fButtonCount - 1; i >= 0; i--) {
        BRect frame = fButtons[i]->Frame();
        fButtons[i]->MoveTo(right - frame.Width(), Bounds().bottom - kButtonMargin - buttonHeight);
        right -= frame.Width() + 1 + kButtonMargin;
    }
    MoveTo(std::floor(monitor.left + (monitor.Width() - width) / 2),
           std::floor(monitor.top + (monitor.Height() - Bounds().Height()) / 2));
}

// Returns how wide the alert must be for its row of buttons.
float BAlert::SizeButtons(float maxWidth, float* height) {
    const float share = (maxWidth - 2 * kTextLeft) / static_cast<float>(std::max(fButtonCount, 1));
    for (int32 i = 0; i < fButtonCount; i++) {
        fButtons[i]->ResizeToPreferred();
        *height = std::max(*height, fButtons[i]->Frame().Height());
    }
    float row = kTextLeft;
    for (int32 i = 0; i < fButtonCount; i++) {
        const float width = std::max(fButtons[i]->Frame().Width(), kUsualButtonWidth);
        fButtons[i]->ResizeTo(std::min(width, share), *height);
        row += fButtons[i]->Frame().Width() + 1 + kButtonMargin;
    }
    return row;
}

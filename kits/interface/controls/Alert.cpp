#include "kits/interface/controls/Alert.h"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "kits/app/AppDefs.h"
#include "kits/app/Invoker.h"
#include "kits/app/Message.h"
#include "kits/interface/controls/AlertIcon.h"
#include "kits/interface/controls/Button.h"
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

} // namespace

// Outlives the alert, for whoever waits in Go().
struct BAlert::Answer {
    std::mutex mutex;
    std::condition_variable given;
    std::optional<int32> which;

    bool Give(int32 answer) {
        std::lock_guard lock(mutex);
        if (which.has_value())
            return false;
        which = answer;
        given.notify_all();
        return true;
    }
    int32 Wait() {
        std::unique_lock lock(mutex);
        given.wait(lock, [this] { return which.has_value(); });
        return *which;
    }
};

BAlert::BAlert(const char* title, const char* text, const char* button1, const char* button2,
               const char* button3, button_width width, alert_type type)
    : BWindow(BRect(0, 0, kUsualWidth, 100), title, B_MODAL_WINDOW_LOOK, B_MODAL_APP_WINDOW_FEEL,
              B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE, B_ALL_WORKSPACES)
    , fButtonWidth(width)
    , fType(type)
    , fAnswer(std::make_shared<Answer>()) {
    auto* background = new AlertIcon(Bounds(), type);
    AddChild(background);
    fTextView = new BTextView(BRect(0, 0, 0, 0), "text", BRect(0, 0, kUsualWidth, 0), B_FOLLOW_NONE,
                              B_WILL_DRAW);
    fTextView->SetViewColor(background->ViewColor());
    fTextView->SetText(text);
    background->AddChild(fTextView);
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

BButton* BAlert::ButtonAt(int32 index) const {
    return index >= 0 && index < fButtonCount ? fButtons[index] : nullptr;
}

int32 BAlert::Go() {
    // The alert may be gone when Open() returns.
    std::shared_ptr<Answer> answer = fAnswer;
    KeyWatchers::Shared().SetWaiting(true);
    Open();
    const int32 which = answer->Wait();
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
    bool isEscape = message->what == B_KEY_DOWN && !message->HasInt32("be:key_repeat") &&
                    message->GetString("bytes", "")[0] == B_ESCAPE;
    if (isEscape && fButtonCount == 1)
        fButtons[0]->Invoke();
    else
        BWindow::DispatchMessage(message, handler);
}

bool BAlert::QuitRequested() {
    Close(-1);
    return false;
}

// Whoever waited may open a menu or the next alert at once: this one is out of the way by then.
void BAlert::Close(int32 which) {
    WindowRoster::Shared().RemoveAlert(this);
    if (fState->host)
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
        monitor =
            BScreen::MonitorFrame(BPoint(static_cast<float>((main.left + main.right) / 2 / scale),
                                         static_cast<float>((main.top + main.bottom) / 2 / scale)));
    }
    const float maxWidth = monitor.Width() - 40;
    const float maxHeight = monitor.Height() - 60;

    float buttonHeight = 0;
    float row = SizeButtons(maxWidth, &buttonHeight);
    const float textLeft = fType == B_EMPTY_ALERT ? kMargin : kTextLeft;
    const float around = 2 * kMargin + buttonHeight + kButtonMargin;
    float width = std::min(std::max(kUsualWidth, row), maxWidth);
    float textHeight = 0;
    // A long text gets a wider alert before it gets a high one.
    for (float wider : {width, 450.0f, 600.0f, maxWidth}) {
        width = std::clamp(wider, width, maxWidth);
        fTextView->SetTextRect({0, 0, width - textLeft - kMargin, 0});
        textHeight = std::max(std::ceil(fTextView->TextHeight()), kPictureHeight);
        if (textHeight + around <= std::min(0.7f * width, maxHeight))
            break;
    }
    textHeight = std::min(textHeight, maxHeight - around);

    ResizeTo(width, textHeight + around);
    fTextView->MoveTo(textLeft, kMargin);
    fTextView->ResizeTo(width - textLeft - kMargin, textHeight);
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
    float widest = fButtonWidth == B_WIDTH_FROM_WIDEST ? 0 : kUsualButtonWidth;
    for (int32 i = 0; i < fButtonCount; i++) {
        fButtons[i]->ResizeToPreferred();
        *height = std::max(*height, fButtons[i]->Frame().Height());
        if (fButtonWidth == B_WIDTH_FROM_WIDEST)
            widest = std::max(widest, fButtons[i]->Frame().Width());
    }
    float share = (maxWidth - 2 * kTextLeft) / static_cast<float>(std::max(fButtonCount, 1));
    float row = kTextLeft;
    for (int32 i = 0; i < fButtonCount; i++) {
        float width = fButtons[i]->Frame().Width();
        if (fButtonWidth != B_WIDTH_FROM_LABEL)
            width = std::max(width, widest);
        fButtons[i]->ResizeTo(std::min(width, share), *height);
        row += fButtons[i]->Frame().Width() + 1 + kButtonMargin;
    }
    return row;
}

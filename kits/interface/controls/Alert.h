#pragma once

#include <memory>

#include "kits/interface/window/Window.h"

class BButton;
class BInvoker;
class BTextView;
class ScrolledText;

enum alert_type {
    B_INFO_ALERT = 1,
    B_WARNING_ALERT = 3,
    B_STOP_ALERT = 4,
};

// A message to the user, with up to three buttons. The program's other windows take no input while
// it is up. It is made with new, shown by Go() and deletes itself.
//
// The last button is the default one, pressed by Enter; Escape presses the only button of an alert
// with one. It is placed in the middle of the monitor where the program's main window is, and is
// never larger than that monitor: a text that has no room scrolls.
class BAlert : public BWindow {
public:
    // Labels are copied; null for a button that is not there.
    BAlert(const char* title, const char* text, const char* button1, const char* button2 = nullptr,
           const char* button3 = nullptr, button_width width = B_WIDTH_AS_USUAL,
           alert_type type = B_INFO_ALERT);
    ~BAlert() override;

    // Shows the alert and waits for an answer: the pressed button, from 0; -1 if the alert was
    // closed, or dismissed because the program quits. Any thread, also a window's own.
    int32 Go();

    // Shows the alert and returns at once. When a button is pressed, `invoker`'s message is sent
    // with the button as "which" (int32). `invoker` stays the caller's and must outlive the alert;
    // it may be null.
    status_t Go(BInvoker* invoker);

    // To style the text before Go(). It belongs to the alert.
    BTextView* TextView() const { return fTextView; }

    void MessageReceived(BMessage* message) override;
    void DispatchMessage(BMessage* message, BHandler* handler) override;
    bool QuitRequested() override;

private:
    struct Answer;

    bool Open();
    void Close(int32 which);
    void LayOut();
    float SizeButtons(float maxWidth, float* height);

    BTextView* fTextView = nullptr;
    ScrolledText* fPane = nullptr; // around it
    BButton* fButtons[3] = {};
    int32 fButtonCount = 0;
    BInvoker* fInvoker = nullptr;
    std::shared_ptr<Answer> fAnswer;
};

#pragma once

#include "kits/interface/window/View.h"

// Launches bookmarks from the keyboard while another window is the active one: after the hot key,
// two digits on the numeric keypad name folder and slot. It also activates the window when Shift,
// Control and Alt are held together. An invisible view; the hot key is looked up at every event.
class QBTracker : public BView {
public:
    QBTracker();
    ~QBTracker() override;

    // B_MODIFIERS_CHANGED may start a sequence.
    void MessageReceived(BMessage* message) override;
    // Asks for every key of the session.
    void AttachedToWindow() override;
    // Goes on with the sequence. Which keys are held is all that counts, so the arguments are not
    // looked at.
    void KeyDown(const char* bytes, int32 numBytes) override;
    // Tells the window, which sees no keys while it is not active.
    void KeyUp(const char* bytes, int32 numBytes) override;
    // Does nothing; the view asks for no pulses.
    virtual void Pulse();

private:
    class Keys;

    void ModifiersChanged(const Keys& keys);
    bool HotKeyIsHeld(int32 hotKey) const;
    void DigitTyped(const Keys& keys);
    void Launch();
    void EndSequence();

    enum State : uint8 {
        Idle,
        AwaitingDelete, // the keypad's, as the last part of the hot key
        AwaitingDigits,
    };

    // The modifiers that were held when they last changed, in the order of the hot key's bits.
    struct {
        bool alt : 1 = false;
        bool shift : 1 = false;
        bool control : 1 = false;
        bool windows : 1 = false;
        bool menu : 1 = false;
    } fHeldKeys;
    State fState : 3;
    // The digits of the sequence, plus one; 0 while they are not typed.
    int8 fFolder;
    int8 fSlot;
};

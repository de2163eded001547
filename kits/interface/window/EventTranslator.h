#pragma once

#include <atomic>
#include <vector>

#include "host/x11/Display.h"
#include "kits/app/Message.h"
#include "kits/app/Messenger.h"

// Codes of messages that a window sends itself; they never leave the kit.
enum : uint32 {
    kFrameChanged = '_kfc', // "left", "top", "right", "bottom" int32, device pixels
    kPointerLeft = '_kpl',
    kColorDropped = '_kcd', // "where" point, "color" B_RGB_COLOR_TYPE
    kLinkDragged = '_kld',  // "where" point while it is over the window
    kLinkDropped = '_klp',  // "where" point, "url", "title" and "file" strings
    kSaveDragged = '_ksd',
    kBringInside = '_kbi',
    kSettingsChanged = '_ksc',
    kWatchKeys = '_kwk', // to a view with B_KEYBOARD_EVENTS in its mask
};

// The messages for a key of the session, in this order: B_MODIFIERS_CHANGED if it is a modifier
// key, then the key's own message, without "bytes".
std::vector<BMessage> KeyMessages(const host::SessionKey& key);

enum class WindowRole {
    Main,  // blocked by alerts; its close is a quit request from outside the program
    Other, // blocked by alerts; its close is a quit request to the window
    Alert,
    Menu,
};

// Turns the host's events of one window into messages for its looper. While alerts block the
// window, its presses and keys go nowhere; what was begun before can still end.
class EventTranslator : public host::WindowSink {
public:
    EventTranslator(const BMessenger& target, double scale, WindowRole role);
    ~EventTranslator() override;

    // Device pixels per logical pixel. The window's thread.
    void SetScale(double scale) { fScale = scale; }

    // Display thread.
    void HandleEvent(const host::WindowEvent& event) override;

private:
    void Handle(const host::PointerMoved& event);
    void Handle(const host::PointerLeft& event);
    void Handle(const host::PointerOver& event);
    void Handle(const host::ButtonPressed& event);
    void Handle(const host::ButtonReleased& event);
    void Handle(const host::WheelTurned& event);
    void Handle(const host::KeyChanged& event);
    void Handle(const host::TextCommitted& event);
    void Handle(const host::ColorDropped& event);
    void Handle(const host::LinkDragged& event);
    void Handle(const host::LinkDropped& event);
    void Handle(const host::FocusChanged& event);
    void Handle(const host::FrameChanged& event);
    void Handle(const host::MinimizedChanged& event);
    void Handle(const host::CloseRequested& event);

    bool IsBlocked() const;
    BPoint WholePlace(int x, int y) const;
    BMessage PointerMessage(uint32 what, const host::PointerMoved& at, bigtime_t when) const;
    void LetKeysGo();

    const BMessenger fTarget;
    std::atomic<double> fScale;
    const WindowRole fRole;
    // The rest is the display thread's.
    bool fIsPressed = false;
};

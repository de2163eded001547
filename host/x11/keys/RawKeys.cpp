#include "host/x11/keys/RawKeys.h"

#include <cstdio>

#include <xcb/xinput.h>

#include "host/x11/server/Connection.h"

namespace host {

namespace {

// Before this version other programs' grabs hide raw events.
constexpr uint16 kMajorVersion = 2;
constexpr uint16 kMinorVersion = 1;

constexpr uint32 kKeys =
    XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;

// As the request has it on the wire: one word of mask behind each head.
struct Selection {
    xcb_input_event_mask_t head;
    uint32 mask;
};

} // namespace

RawKeys::RawKeys(const Connection& connection, DisplaySink* sink)
    : fConnection(connection)
    , fSink(sink) {}

bool RawKeys::FindExtension() {
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(fConnection, &xcb_input_id);
    if (!extension || !extension->present)
        return false;
    fOpcode = extension->major_opcode;
    const auto version =
        fConnection.Ask<xcb_input_xi_query_version, xcb_input_xi_query_version_reply>(
            kMajorVersion, kMinorVersion);
    return version &&
           (version->major_version > kMajorVersion ||
            (version->major_version == kMajorVersion && version->minor_version >= kMinorVersion));
}

void RawKeys::Watch(bool watch, const std::string& program) {
    std::lock_guard lock(fLock);
    if (watch == fIsWatching || fIsRefused)
        return;
    if (watch && !FindExtension()) {
        fIsRefused = true;
        if (!fConnection.IsLost())
            std::fprintf(stderr,
                         "%s: the hot key will not work: the display server has no XInput %d.%d, "
                         "so keys typed in other programs cannot be seen\n",
                         program.c_str(), kMajorVersion, kMinorVersion);
        return;
    }
    Select(watch);
    fHeld = watch ? AskForHeldKeys() : HeldKeys();
    fIsWatching = watch;
}

// Of the master keyboards: each key comes once, and the keys of keyboards that are set apart do
// not. The server announces keyboards that come and go only to clients that ask for all devices.
void RawKeys::Select(bool watch) const {
    const Selection selections[] = {
        {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, watch ? kKeys : 0},
        {{XCB_INPUT_DEVICE_ALL, 1}, watch ? uint32{XCB_INPUT_XI_EVENT_MASK_HIERARCHY} : 0}};
    xcb_input_xi_select_events(fConnection, fConnection.Root(), std::size(selections),
                               &selections[0].head);
    fConnection.Flush();
}

HeldKeys RawKeys::AskForHeldKeys() const {
    const auto keymap = fConnection.Ask<xcb_query_keymap, xcb_query_keymap_reply>();
    HeldKeys held;
    for (std::size_t key = 0; keymap && key < held.size(); key++)
        held[key] = (keymap->keys[key / 8] >> key % 8 & 1) != 0;
    return held;
}

void RawKeys::HandleEvent(const xcb_ge_generic_event_t& event) {
    {
        std::lock_guard lock(fLock);
        if (!fIsWatching || event.extension != fOpcode)
            return;
    }
    if (event.event_type == XCB_INPUT_HIERARCHY) {
        HandleOtherKeyboards();
        return;
    }
    bool isPress = event.event_type == XCB_INPUT_RAW_KEY_PRESS;
    if (!isPress && event.event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return;
    const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    if (isPress)
        fLastPressTime = key.time;
    HandleKey(key.detail, isPress);
}

void RawKeys::HandleGrabbedKey(xcb_keycode_t key, bool down) {
    if (States())
        HandleKey(key, down);
}

void RawKeys::HandleKey(uint32 key, bool down) {
    std::unique_lock lock(fLock);
    if (key >= fHeld.size())
        return;
    HeldKeys before = fHeld;
    fHeld[key] = down;
    HeldKeys now = fHeld;
    lock.unlock();
    if (uint32 code = RawKeyCode(static_cast<xcb_keycode_t>(key)))
        Notify(code, down, before, now);
}

// The keys that were held on one that went are held no more.
void RawKeys::HandleOtherKeyboards() {
    std::unique_lock lock(fLock);
    HeldKeys before = fHeld;
    fHeld = AskForHeldKeys();
    HeldKeys now = fHeld;
    lock.unlock();
    if (now != before)
        Notify(0, false, before, now);
}

void RawKeys::Notify(uint32 key, bool down, const HeldKeys& before, const HeldKeys& now) {
    fSink->SessionKeyChanged({.key = key,
                              .down = down,
                              .before = StatesOf(before),
                              .states = StatesOf(now),
                              .when = Now()});
}

std::optional<KeyStates> RawKeys::States() {
    std::lock_guard lock(fLock);
    return fIsWatching ? std::optional(StatesOf(fHeld)) : std::nullopt;
}

} // namespace host

#include "host/x11/keys/Keyboard.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <string_view>

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

// The extension's header has a member of this name, a keyword here.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr uint16 kNotices = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr uint16 kMapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                             XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS |
                             XCB_XKB_MAP_PART_KEY_ACTIONS | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                             XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

// Notices of the current state are not among those asked for: they would wake the program with each
// Shift that is typed anywhere. The events themselves hold the modifiers and the group.
constexpr uint16 kModifierBits = 0xff;

xkb_layout_index_t GroupOf(uint16 state) {
    return (state >> 13) & 3;
}

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// Texts are UTF-8 in every locale; the plain one has no sequences in it.
std::string Locale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        std::string locale = Variable(name);
        if (!locale.empty() && locale != "C" && locale != "POSIX")
            return locale;
    }
    return "en_US.UTF-8";
}

// With a file of one's own any key can begin a sequence.
bool HasOwnFile() {
    return !Variable("XCOMPOSEFILE").empty() ||
           access((Variable("HOME") + "/.XCompose").c_str(), R_OK) == 0;
}

bool IsModifier(xkb_keysym_t symbol) {
    return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R) ||
           (symbol >= XKB_KEY_ISO_Lock && symbol <= XKB_KEY_ISO_Level5_Lock) ||
           symbol == XKB_KEY_Mode_switch || symbol == XKB_KEY_Num_Lock;
}

bool IsPrinted(std::string_view text) {
    return !text.empty() && static_cast<unsigned char>(text[0]) >= 0x20 && text[0] != 0x7f;
}

// The server's numbers are the kernel's plus 8.
constexpr int kFirstKey = 8;

// By the kernel's numbers, from 0 on.
constexpr std::array<uint8, 128> kRawCodes = {
    // none, Escape, 1 to 0, -, =, Backspace
    0x00, 0x01, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x1b, 0x1c, 0x1d, 0x1e,
    // Tab, Q to P, [, ], Enter
    0x26, 0x27, 0x28, 0x29, 0x2a, 0x2b, 0x2c, 0x2d, 0x2e, 0x2f, 0x30, 0x31, 0x32, 0x47,
    // left Control, A to L, ;, ', `
    0x5c, 0x3c, 0x3d, 0x3e, 0x3f, 0x40, 0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x11,
    // left Shift, \, Z to M, comma, full stop, /, right Shift
    0x4b, 0x33, 0x4c, 0x4d, 0x4e, 0x4f, 0x50, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56,
    // keypad *, left Alt, Space, Caps Lock
    0x24, 0x5d, 0x5e, 0x3b,
    // F1 to F10, Num Lock, Scroll Lock
    0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x22, 0x0f,
    // keypad 7 8 9 - 4 5 6 + 1 2 3 0 and point
    0x37, 0x38, 0x39, 0x25, 0x48, 0x49, 0x4a, 0x3a, 0x58, 0x59, 0x5a, 0x64, 0x65,
    // two unused, the key between left Shift and Z, F11, F12
    0x00, 0x00, 0x69, 0x0c, 0x0d,
    // seven keys of Japanese keyboards
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    // keypad Enter, right Control, keypad /, Print Screen, right Alt, unused
    0x5b, 0x60, 0x23, 0x0e, 0x5f, 0x00,
    // Home, Up, Page Up, Left, Right, End, Down, Page Down, Insert, Delete
    0x20, 0x57, 0x21, 0x61, 0x63, 0x35, 0x62, 0x36, 0x1f, 0x34,
    // seven unused, Pause
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10,
    // five unused, left and right "Windows" key, Menu
    0x00, 0x00, 0x00, 0x00, 0x00, 0x66, 0x67, 0x68};

struct SpecialKey {
    xkb_keysym_t symbol;
    char byte;
};

constexpr SpecialKey kSpecialKeys[] = {
    {XKB_KEY_Home, 0x01},         {XKB_KEY_KP_Home, 0x01},    {XKB_KEY_End, 0x04},
    {XKB_KEY_KP_End, 0x04},       {XKB_KEY_Insert, 0x05},     {XKB_KEY_KP_Insert, 0x05},
    {XKB_KEY_BackSpace, 0x08},    {XKB_KEY_Tab, 0x09},        {XKB_KEY_KP_Tab, 0x09},
    {XKB_KEY_ISO_Left_Tab, 0x09}, {XKB_KEY_Return, 0x0a},     {XKB_KEY_KP_Enter, 0x0a},
    {XKB_KEY_Page_Up, 0x0b},      {XKB_KEY_KP_Page_Up, 0x0b}, {XKB_KEY_Page_Down, 0x0c},
    {XKB_KEY_KP_Page_Down, 0x0c}, {XKB_KEY_Print, 0x10},      {XKB_KEY_Sys_Req, 0x10},
    {XKB_KEY_Scroll_Lock, 0x10},  {XKB_KEY_Pause, 0x10},      {XKB_KEY_Break, 0x10},
    {XKB_KEY_Escape, 0x1b},       {XKB_KEY_Left, 0x1c},       {XKB_KEY_KP_Left, 0x1c},
    {XKB_KEY_Right, 0x1d},        {XKB_KEY_KP_Right, 0x1d},   {XKB_KEY_Up, 0x1e},
    {XKB_KEY_KP_Up, 0x1e},        {XKB_KEY_Down, 0x1f},       {XKB_KEY_KP_Down, 0x1f},
    {XKB_KEY_Delete, 0x7f},       {XKB_KEY_KP_Delete, 0x7f},
};

char SpecialKeyByte(xkb_keysym_t symbol) {
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F12)
        return 0x10;
    const auto* found = std::ranges::find(kSpecialKeys, symbol, &SpecialKey::symbol);
    return found != std::end(kSpecialKeys) ? found->byte : '\0';
}

struct StateBit {
    uint16 server;
    uint32 platform;
};

constexpr StateBit kModifiers[] = {
    {XCB_MOD_MASK_SHIFT, kShiftKey},     {XCB_MOD_MASK_LOCK, kCapsLock},
    {XCB_MOD_MASK_CONTROL, kControlKey}, {XCB_MOD_MASK_1, kCommandKey},
    {XCB_MOD_MASK_2, kNumLock},          {XCB_MOD_MASK_4, kOptionKey}};
constexpr StateBit kButtons[] = {{XCB_BUTTON_MASK_1, kPrimaryButton},
                                 {XCB_BUTTON_MASK_2, kTertiaryButton},
                                 {XCB_BUTTON_MASK_3, kSecondaryButton}};

uint32 BitsOf(uint16 state, std::span<const StateBit> bits) {
    uint32 converted = 0;
    for (const StateBit& bit : bits)
        converted |= state & bit.server ? bit.platform : 0;
    return converted;
}

} // namespace

uint32 RawKeyCode(xcb_keycode_t key) {
    int index = key - kFirstKey;
    return index >= 0 && index < static_cast<int>(kRawCodes.size()) ? kRawCodes[index] : 0;
}

uint32 ModifiersOf(uint16 state) {
    return BitsOf(state, kModifiers);
}

uint32 ButtonsOf(uint16 state) {
    return BitsOf(state, kButtons);
}

KeyStates StatesOf(const HeldKeys& held) {
    KeyStates states{};
    for (std::size_t i = 0; i < kRawCodes.size(); i++) {
        uint8 code = kRawCodes[i];
        if (code != 0 && held[i + kFirstKey])
            states[code / 8] |= 0x80 >> code % 8;
    }
    return states;
}

std::string KeyText(xkb_keysym_t symbol) {
    if (char special = SpecialKeyByte(symbol))
        return std::string(1, special);
    char text[8] = {};
    if (xkb_keysym_to_utf8(symbol, text, sizeof(text)) <= 0)
        return {};
    auto first = static_cast<uint8>(text[0]);
    return first < 0x20 || first == 0x7f ? std::string() : std::string(text);
}

void Compose::Load() {
    fHasTried = true;
    std::unique_ptr<xkb_context, UnrefKeys> context(
        xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (!context)
        return;
    std::unique_ptr<xkb_compose_table, UnrefKeys> table;
    for (const std::string& locale : {Locale(), std::string("en_US.UTF-8")}) {
        if (!table) {
            table.reset(xkb_compose_table_new_from_locale(context.get(), locale.c_str(),
                                                          XKB_COMPOSE_COMPILE_NO_FLAGS));
        }
    }
    if (table)
        fState.reset(xkb_compose_state_new(table.get(), XKB_COMPOSE_STATE_NO_FLAGS));
}

std::optional<std::string> Compose::Type(xkb_keysym_t symbol) {
    if (IsModifier(symbol))
        return std::nullopt;
    if (!fHasTried && (KeyText(symbol).empty() || HasOwnFile()))
        Load();
    if (!fState || xkb_compose_state_feed(fState.get(), symbol) == XKB_COMPOSE_FEED_IGNORED)
        return std::nullopt;
    switch (xkb_compose_state_get_status(fState.get())) {
    case XKB_COMPOSE_COMPOSING:
        return "";
    case XKB_COMPOSE_COMPOSED: {
        char text[256] = {};
        xkb_compose_state_get_utf8(fState.get(), text, sizeof(text));
        Forget();
        return text;
    }
    case XKB_COMPOSE_CANCELLED:
        Forget();
        // A key that prints nothing does no more than end the sequence.
        return IsPrinted(KeyText(symbol)) ? std::nullopt : std::optional<std::string>("");
    case XKB_COMPOSE_NOTHING:
        break;
    }
    return std::nullopt;
}

void Compose::Forget() {
    if (fState)
        xkb_compose_state_reset(fState.get());
}

Keyboard::Keyboard(const Connection& connection)
    : fConnection(connection) {
    const xcb_query_extension_reply_t* xkb = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (!xkb || !xkb->present)
        return;
    fHasXkb = true;
    fFirstEvent = xkb->first_event;
    auto use = xcb_xkb_use_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                     XKB_X11_MIN_MINOR_XKB_VERSION);
    xcb_discard_reply(connection, use.sequence);
    constexpr auto kDevice = static_cast<xcb_xkb_device_spec_t>(XCB_XKB_ID_USE_CORE_KBD);
    constexpr uint32 kDetectable = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    auto flags = xcb_xkb_per_client_flags(connection, kDevice, kDetectable, kDetectable, 0, 0, 0);
    xcb_discard_reply(connection, flags.sequence);
    xcb_xkb_select_events(connection, kDevice, kNotices, 0, kNotices, kMapParts, kMapParts,
                          nullptr);
}

bool Keyboard::ReadLayout() {
    if (fIsLayoutCurrent || !fHasXkb)
        return fState != nullptr;
    fIsLayoutCurrent = true;
    if (!fContext)
        fContext.reset(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    fState.reset();
    int32 device = xkb_x11_get_core_keyboard_device_id(fConnection);
    if (!fContext || device < 0)
        return false;
    std::unique_ptr<xkb_keymap, UnrefKeys> keymap(xkb_x11_keymap_new_from_device(
        fContext.get(), fConnection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (keymap)
        fState.reset(xkb_state_new(keymap.get()));
    return fState != nullptr;
}

std::string Keyboard::TextOf(const xcb_key_press_event_t& event, bool down) {
    if (!ReadLayout())
        return {};
    xkb_state_update_mask(fState.get(), event.state & kModifierBits, 0, 0, 0, 0,
                          GroupOf(event.state));
    xkb_keysym_t symbol = xkb_state_key_get_one_sym(fState.get(), event.detail);
    std::optional<std::string> composed = down ? fCompose.Type(symbol) : std::nullopt;
    return composed ? *composed : KeyText(symbol);
}

KeyChanged Keyboard::Translate(const xcb_key_press_event_t& event, bool down) {
    bool wasHeld = fHeld[event.detail];
    fHeld[event.detail] = down;
    return {.down = down,
            .repeated = down && wasHeld,
            .key = RawKeyCode(event.detail),
            .modifiers = ModifiersOf(event.state),
            .text = TextOf(event, down),
            .states = StatesOf(fHeld),
            .when = Now()};
}

bool Keyboard::HandleNotice(const xcb_generic_event_t& event) {
    if (!fHasXkb || (event.response_type & 0x7f) != fFirstEvent)
        return false;
    fIsLayoutCurrent = false;
    return true;
}

} // namespace host

#include "host/x11/keys/Keyboard.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

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

} // namespace

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

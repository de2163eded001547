#include "host/x11/keys/Compose.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "host/x11/keys/KeyCodes.h"

namespace host {

namespace {

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
    std::unique_ptr<xkb_context, Unref> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (!context)
        return;
    std::unique_ptr<xkb_compose_table, Unref> table;
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

} // namespace host

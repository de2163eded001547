#pragma once

#include <memory>
#include <optional>
#include <string>

#include <xkbcommon/xkbcommon-compose.h>

namespace host {

// Characters that are typed with several keys: accents on dead keys, and the compose key's. The
// sequences are those of the environment's locale and of the user's own file; they are read with
// the first key that can begin one. The display thread only.
class Compose {
public:
    // What a key with this symbol types as a part of a sequence, empty while more is to come;
    // nothing if it belongs to none and types what it always does.
    std::optional<std::string> Type(xkb_keysym_t symbol);

    // The sequence that was begun is not.
    void Forget();

private:
    struct Unref {
        void operator()(xkb_context* context) const { xkb_context_unref(context); }
        void operator()(xkb_compose_table* table) const { xkb_compose_table_unref(table); }
        void operator()(xkb_compose_state* state) const { xkb_compose_state_unref(state); }
    };

    void Load();

    bool fHasTried = false;
    std::unique_ptr<xkb_compose_state, Unref> fState;
};

} // namespace host

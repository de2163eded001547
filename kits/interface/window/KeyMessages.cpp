#include "kits/interface/window/KeyMessages.h"

#include "kits/app/AppDefs.h"
#include "kits/interface/drawing/InterfaceDefs.h"

namespace {

constexpr uint32 kLocks = B_CAPS_LOCK | B_SCROLL_LOCK | B_NUM_LOCK;
constexpr uint32 kCapsLockKey = 0x3b;
constexpr uint32 kNumLockKey = 0x22;

struct ModifierKey {
    uint32 key;
    uint32 bit;
};
constexpr ModifierKey kModifierKeys[] = {
    {0x4b, B_SHIFT_KEY},   {0x56, B_SHIFT_KEY},   {0x5c, B_CONTROL_KEY},
    {0x60, B_CONTROL_KEY}, {0x5d, B_COMMAND_KEY}, {0x5f, B_COMMAND_KEY},
    {0x66, B_OPTION_KEY},  {0x67, B_OPTION_KEY},  {0x68, B_MENU_KEY},
};

uint32 ModifiersOf(const host::KeyStates& states) {
    uint32 modifiers = 0;
    for (const ModifierKey& modifier : kModifierKeys) {
        if (host::IsHeld(states, modifier.key))
            modifiers |= modifier.bit;
    }
    return modifiers;
}

void Set(host::KeyStates& states, uint32 key, bool isHeld) {
    uint8 bit = 0x80 >> key % 8;
    uint8& byte = states[key / 8];
    byte = isHeld ? byte | bit : byte & ~bit;
}

// By its place: what a key of another program types is not known.
bool TypesSomething(uint32 key) {
    host::KeyStates states{};
    Set(states, key, true);
    return key != kCapsLockKey && key != kNumLockKey && ModifiersOf(states) == 0;
}

struct Key {
    uint32 key;
    bool down;
    bool repeated;
    bool isMapped;
    uint32 modifiers;
    const host::KeyStates& states;
    bigtime_t when;
};

void AddStates(BMessage& message, const host::KeyStates& states) {
    message.AddData("states", B_UINT8_TYPE, states.data(), static_cast<ssize_t>(states.size()));
}

BMessage MessageOf(const Key& key) {
    BMessage message(key.down ? (key.isMapped ? B_KEY_DOWN : B_UNMAPPED_KEY_DOWN)
                              : (key.isMapped ? B_KEY_UP : B_UNMAPPED_KEY_UP));
    message.AddInt64("when", key.when);
    message.AddInt32("key", static_cast<int32>(key.key));
    message.AddInt32("modifiers", static_cast<int32>(key.modifiers));
    AddStates(message, key.states);
    if (key.down && key.repeated)
        message.AddInt32("be:key_repeat", 1);
    return message;
}

BMessage MessageOf(const host::KeyChanged& key) {
    bool isMapped = !key.text.empty();
    BMessage message =
        MessageOf({key.key, key.down, key.repeated, isMapped, key.modifiers, key.states, key.when});
    if (isMapped)
        message.AddString("bytes", key.text.c_str());
    return message;
}

void AddModifiers(std::vector<BMessage>& messages, uint32 before, uint32 now,
                  const host::KeyStates& states, bigtime_t when) {
    if (before == now)
        return;
    BMessage& message = messages.emplace_back(B_MODIFIERS_CHANGED);
    message.AddInt64("when", when);
    message.AddInt32("modifiers", static_cast<int32>(now));
    message.AddInt32("be:old_modifiers", static_cast<int32>(before));
    AddStates(message, states);
}

} // namespace

std::vector<BMessage> KeyMessages(const host::KeyChanged& key) {
    host::KeyStates before = key.states;
    Set(before, key.key, !key.down || key.repeated);
    uint32 locks = key.modifiers & kLocks;
    std::vector<BMessage> messages;
    AddModifiers(messages, locks | ModifiersOf(before), locks | ModifiersOf(key.states), key.states,
                 key.when);
    messages.push_back(MessageOf(key));
    return messages;
}

std::vector<BMessage> KeyMessages(const host::SessionKey& key) {
    uint32 modifiers = ModifiersOf(key.states);
    std::vector<BMessage> messages;
    AddModifiers(messages, ModifiersOf(key.before), modifiers, key.states, key.when);
    bool repeated = host::IsHeld(key.before, key.key);
    if (key.key != 0)
        messages.push_back(MessageOf({key.key, key.down, repeated, TypesSomething(key.key),
                                      modifiers, key.states, key.when}));
    return messages;
}

BMessage TypedMessage(const std::string& text, bigtime_t when) {
    return MessageOf(host::KeyChanged{.down = true,
                                      .repeated = false,
                                      .key = 0,
                                      .modifiers = 0,
                                      .text = text,
                                      .states = {},
                                      .when = when});
}

BMessage ReleaseMessage(host::KeyChanged pressed) {
    pressed.down = false;
    Set(pressed.states, pressed.key, false);
    return MessageOf(pressed);
}

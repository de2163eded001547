#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "kits/app/Message.h"

// A field of a message. A value is a messenger, a message (never changed once it is here, so that
// copies share it), or, for all other types, its bytes; a string's include its NUL.
struct BMessage::Field {
    using Value = std::variant<std::string, BMessenger, std::shared_ptr<const BMessage>>;

    std::string name;
    type_code type;
    bool isFixedSize;
    std::vector<Value> values;
};

// The size that every value of this type has, or 0.
size_t SizeOfType(type_code type);

// How deep messages may lie in messages.
inline constexpr int32 kMaxMessageDepth = 16;

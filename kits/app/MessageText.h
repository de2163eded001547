#pragma once

#include <string>
#include <string_view>

#include "kits/app/Message.h"

// A message as text: docs/FORMATS.md.
class MessageText {
public:
    // The most bytes that a text may have.
    static constexpr size_t kMaxSize = 1 << 20;

    // False if it would be longer than that.
    static bool Write(const BMessage& message, std::string& text);

    // Fills a message that is empty; false if the text is not exactly one message, which is then
    // good for nothing.
    static bool Read(std::string_view text, BMessage& message);

private:
    class Writer;
    class Reader;
};

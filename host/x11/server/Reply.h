#pragma once

#include <cstdlib>
#include <memory>

namespace host {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

// What xcb hands out: a reply, an event or an error. Null when the request failed or the connection
// is lost.
template <typename T>
using Reply = std::unique_ptr<T, FreeMemory>;

} // namespace host

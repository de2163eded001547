#pragma once

#include <unistd.h>

#include <utility>

namespace host {

// Owns a file descriptor, or none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor)
        : fDescriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept
        : fDescriptor(std::exchange(other.fDescriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fDescriptor, other.fDescriptor);
        return *this;
    }
    ~Descriptor() {
        if (fDescriptor >= 0)
            close(fDescriptor);
    }

    explicit operator bool() const { return fDescriptor >= 0; }
    int Get() const { return fDescriptor; }
    int Release() { return std::exchange(fDescriptor, -1); }

private:
    int fDescriptor = -1;
};

} // namespace host

#pragma once

#include <unistd.h>

#include <utility>

namespace host {

// Owns a file descriptor, or none (-1).
class Descriptor {
public:
    explicit Descriptor(int descriptor = -1)
        : fDescriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept
        : fDescriptor(std::exchange(other.fDescriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fDescriptor, other.fDescriptor);
        return *this;
    }
    ~Descriptor() { Close(); }

    explicit operator bool() const { return fDescriptor >= 0; }
    int Get() const { return fDescriptor; }
    int Release() { return std::exchange(fDescriptor, -1); }
    void Close() {
        if (fDescriptor >= 0)
            close(Release());
    }

private:
    int fDescriptor;
};

} // namespace host

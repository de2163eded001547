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

    int Get() const { return fDescriptor; }
    explicit operator bool() const { return fDescriptor >= 0; }

    void Close() {
        if (fDescriptor >= 0)
            close(fDescriptor);
        fDescriptor = -1;
    }

private:
    int fDescriptor;
};

} // namespace host

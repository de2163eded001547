#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "tests/support/Wait.h"

namespace test {

// What happened, in order. Any thread may add to it.
template <typename T>
class Recorded {
public:
    void Add(const T& one) {
        std::lock_guard lock(fLock);
        fAll.push_back(one);
    }
    std::vector<T> All() const {
        std::lock_guard lock(fLock);
        return fAll;
    }
    // Those since the last call; they are forgotten.
    std::vector<T> Take() {
        std::lock_guard lock(fLock);
        return std::exchange(fAll, {});
    }
    bool Reaches(size_t count) const {
        return WaitUntil([&] { return All().size() >= count; });
    }

private:
    mutable std::mutex fLock;
    std::vector<T> fAll;
};

} // namespace test

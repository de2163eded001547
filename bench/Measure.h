#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

// Milliseconds since it was made.
class Stopwatch {
public:
    double Elapsed() const {
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - fStart;
        return time.count();
    }

private:
    const std::chrono::steady_clock::time_point fStart = std::chrono::steady_clock::now();
};

// Must not be empty.
inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

} // namespace bench

#pragma once

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "host/files/monitor/WatchTable.h"

namespace host {

// New files that are announced when nothing has happened to them for a while: programs that copy
// create a file, fill it, close it and only then give it its attributes.
class QuietFiles {
public:
    static constexpr bigtime_t kQuietTime = 50'000;

    // Something happened to the file: its quiet time begins anew.
    void Stir(const Place& place, bigtime_t now);
    void Forget(const Place& place);
    void ForgetDirectory(int watch);
    void ForgetAll();

    // Those whose quiet time is over; they are forgotten.
    std::vector<Place> TakeQuiet(bigtime_t now);

    // When the next is over, 0 if there is none.
    bigtime_t NextDeadline() const { return fByTime.empty() ? 0 : fByTime.begin()->first; }

private:
    std::map<Place, bigtime_t> fDeadlines;
    std::set<std::pair<bigtime_t, Place>> fByTime;
};

} // namespace host

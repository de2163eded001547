#include "host/files/monitor/QuietFiles.h"

namespace host {

void QuietFiles::Stir(const Place& place, bigtime_t now) {
    Forget(place);
    fDeadlines[place] = now + kQuietTime;
    fByTime.insert({now + kQuietTime, place});
}

void QuietFiles::Forget(const Place& place) {
    auto found = fDeadlines.find(place);
    if (found == fDeadlines.end())
        return;
    fByTime.erase({found->second, place});
    fDeadlines.erase(found);
}

void QuietFiles::ForgetDirectory(int watch) {
    for (auto at = fDeadlines.lower_bound({watch, ""});
         at != fDeadlines.end() && at->first.watch == watch;) {
        fByTime.erase({at->second, at->first});
        at = fDeadlines.erase(at);
    }
}

void QuietFiles::ForgetAll() {
    fDeadlines.clear();
    fByTime.clear();
}

std::vector<Place> QuietFiles::TakeQuiet(bigtime_t now) {
    std::vector<Place> quiet;
    while (!fByTime.empty() && fByTime.begin()->first <= now) {
        quiet.push_back(fByTime.begin()->second);
        Forget(quiet.back());
    }
    return quiet;
}

} // namespace host

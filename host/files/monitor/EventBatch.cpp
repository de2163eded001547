#include "host/files/monitor/EventBatch.h"

#include <utility>

namespace host {

namespace {

// Origins that are no place.
const Place kNowhere = {-1, ""};
const Place kOutside = {-2, ""};

template <typename Key>
uint32 MaskAt(const std::map<Key, uint32>& masks, const Key& key) {
    auto found = masks.find(key);
    return found == masks.end() ? 0 : found->second;
}

} // namespace

void EventBatch::Add(const InotifyEvent& event) {
    fCount++;
    fHasOverflown |= (event.mask & IN_Q_OVERFLOW) != 0;
    if (event.name.empty()) {
        fSelves[event.watch] |= event.mask;
        return;
    }
    const Place place = {event.watch, event.name};
    auto [found, isNew] = fTouches.try_emplace(place, 0);
    if (isNew)
        fPlaces.push_back(place);
    found->second |= event.mask;
    if (event.mask & kNameChanges)
        FollowNode(place, event);
}

// The halves of a move belong together by their cookie; foreign events may come between them.
void EventBatch::FollowNode(const Place& place, const InotifyEvent& event) {
    Place& origin = fOrigins.try_emplace(place, place).first->second;
    Place left = std::exchange(origin, kNowhere);
    if (event.mask & IN_MOVED_FROM)
        fMoving[event.cookie] = left;
    if (event.mask & IN_MOVED_TO) {
        auto half = fMoving.extract(event.cookie);
        origin = half ? half.mapped() : kOutside;
    }
}

uint32 EventBatch::At(const Place& place) const {
    return MaskAt(fTouches, place);
}

uint32 EventBatch::Of(int watch) const {
    return MaskAt(fSelves, watch);
}

std::set<Place> EventBatch::Left() const {
    std::set<Place> left;
    for (const auto& [place, origin] : fOrigins)
        left.insert(origin);
    for (const auto& [cookie, origin] : fMoving)
        left.insert(origin);
    return left;
}

bool EventBatch::CameFromOutside(const Place& place) const {
    auto found = fOrigins.find(place);
    return found != fOrigins.end() && found->second == kOutside;
}

} // namespace host

#include "host/files/monitor/EventBatch.h"

#include <sys/inotify.h>

#include <utility>

namespace host {

namespace {

constexpr uint32 kNameChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

// Origins that are no place.
const Place kNowhere = {-1, ""};
const Place kOutside = {-2, ""};

template <typename Key, typename Value>
Value ValueAt(const std::map<Key, Value>& values, const Key& key) {
    auto found = values.find(key);
    return found == values.end() ? Value() : found->second;
}

} // namespace

void EventBatch::Add(const InotifyEvent& event) {
    fCount++;
    if (event.mask & IN_Q_OVERFLOW)
        fHasOverflown = true;
    else if (event.name.empty())
        AddSelfEvent(fSelves[event.watch], event.mask);
    else
        AddEntryEvent({event.watch, event.name}, event);
}

void EventBatch::AddEntryEvent(const Place& place, const InotifyEvent& event) {
    auto [found, isNew] = fTouches.try_emplace(place);
    if (isNew)
        fPlaces.push_back(place);
    Touch& touch = found->second;
    touch.isNamed |= (event.mask & kNameChanges) != 0;
    touch.hasArrived |= (event.mask & IN_MOVED_TO) != 0;
    touch.isWritten |= (event.mask & (IN_ATTRIB | IN_CLOSE_WRITE)) != 0;
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

void EventBatch::AddSelfEvent(Self& self, uint32 mask) const {
    self.hasMoved |= (mask & IN_MOVE_SELF) != 0;
    self.isRemoved |= (mask & IN_DELETE_SELF) != 0;
    self.hasAttributes |= (mask & IN_ATTRIB) != 0;
    self.isWritten |= (mask & IN_MODIFY) != 0;
    self.hasEnded |= (mask & (IN_IGNORED | IN_UNMOUNT)) != 0;
}

EventBatch::Touch EventBatch::At(const Place& place) const {
    return ValueAt(fTouches, place);
}

EventBatch::Self EventBatch::Of(int watch) const {
    return ValueAt(fSelves, watch);
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

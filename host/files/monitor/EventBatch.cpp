#include "host/files/monitor/EventBatch.h"

#include <sys/inotify.h>

#include <algorithm>

namespace host {

namespace {

constexpr uint32 kNameChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

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
    if (event.mask & kNameChanges)
        touch.changes.push_back({fCount, event.mask, event.cookie});
    if (event.mask & IN_MOVED_FROM)
        fLeft.insert(event.cookie);
    if (event.mask & IN_MOVED_TO) {
        touch.hasArrived = true;
        fArrived[event.cookie] = {fCount, place};
    }
    if (event.mask & (IN_ATTRIB | IN_CLOSE_WRITE))
        touch.isWritten = true;
}

void EventBatch::AddSelfEvent(Self& self, uint32 mask) const {
    if (mask & IN_MOVE_SELF) {
        self.hasMoved = true;
        self.movedAt = fCount;
    }
    self.isRemoved |= (mask & IN_DELETE_SELF) != 0;
    self.hasAttributes |= (mask & IN_ATTRIB) != 0;
    self.isWritten |= (mask & IN_MODIFY) != 0;
    self.hasEnded |= (mask & (IN_IGNORED | IN_UNMOUNT)) != 0;
}

const EventBatch::Touch& EventBatch::At(const Place& place) const {
    static const Touch kUntouched;
    auto found = fTouches.find(place);
    return found == fTouches.end() ? kUntouched : found->second;
}

bool EventBatch::IsRemoved(int watch) const {
    auto found = fSelves.find(watch);
    return found != fSelves.end() && found->second.isRemoved;
}

// The halves of a move belong together by their cookie; foreign events may come between them.
EventBatch::Fate EventBatch::FateOf(Place place, const Watch* watch) const {
    auto self = watch ? fSelves.find(watch->number) : fSelves.end();
    size_t since = 0;
    for (;;) {
        const auto& changes = At(place).changes;
        auto change = std::find_if(changes.begin(), changes.end(),
                                   [since](const auto& item) { return item.index > since; });
        if (change == changes.end())
            return since == 0 ? Fate::Removed : Fate::Open;
        // A name that another one comes to, without a departure, was replaced.
        if (!(change->mask & IN_MOVED_FROM))
            return Fate::Removed;
        auto arrival = fArrived.find(change->cookie);
        if (arrival == fArrived.end()) {
            // The node's own event comes behind the second half.
            bool hasEnded = self != fSelves.end() && self->second.movedAt > change->index;
            return hasEnded ? Fate::MovedOut : Fate::Open;
        }
        since = arrival->second.index;
        place = arrival->second.place;
    }
}

bool EventBatch::CameFromOutside(const Place& place) const {
    const auto& changes = At(place).changes;
    auto arrival = std::find_if(changes.rbegin(), changes.rend(), [](const auto& change) {
        return (change.mask & (IN_CREATE | IN_MOVED_TO)) != 0;
    });
    return arrival != changes.rend() && (arrival->mask & IN_MOVED_TO) &&
           !fLeft.contains(arrival->cookie);
}

} // namespace host

#include "host/files/monitor/EventBatch.h"

#include <sys/inotify.h>

namespace host {

void EventBatch::Add(const InotifyEvent& event) {
    if (event.mask & IN_Q_OVERFLOW) {
        fHasOverflown = true;
        return;
    }
    // Events of a watch that was ended are still delivered.
    Watch* watch = fWatches.Find(event.watch);
    if (!watch)
        return;
    if (event.name.empty())
        AddSelfEvent(*watch, event.mask);
    else if (watch->names)
        AddEntryEvent({watch->number, event.name}, event);
}

const EventBatch::Touch& EventBatch::At(const Place& place) const {
    static const Touch kUntouched;
    auto found = fTouches.find(place);
    return found == fTouches.end() ? kUntouched : found->second;
}

void EventBatch::AddEntryEvent(const Place& place, const InotifyEvent& event) {
    Touch& touch = TouchOf(place);
    if (event.mask & IN_CREATE) {
        touch.isCreated = true;
        fTrails.Created(place);
    }
    if (event.mask & IN_DELETE) {
        touch.isRemoved = true;
        fTrails.Removed(place);
    }
    if (event.mask & IN_MOVED_FROM)
        fTrails.Left(place, event.cookie);
    if (event.mask & IN_MOVED_TO) {
        touch.hasArrived = true;
        fTrails.Arrived(place, event.cookie);
    }
    if (event.mask & (IN_ATTRIB | IN_CLOSE_WRITE))
        touch.isChanged = true;
}

void EventBatch::AddSelfEvent(const Watch& watch, uint32 mask) {
    Self& self = fSelves[watch.number];
    if (mask & IN_MOVE_SELF) {
        self.hasMoved = true;
        fTrails.MoveEnded(watch.Node());
    }
    if (mask & IN_DELETE_SELF) {
        self.isRemoved = true;
        // Its directory tells it too, but only behind this.
        Place place;
        if (fTrails.NodeRemoved(watch, place))
            TouchOf(place).isRemoved = true;
    }
    if (mask & (IN_ATTRIB | IN_MODIFY | IN_CLOSE_WRITE))
        self.isChanged = true;
    if (mask & IN_IGNORED)
        self.hasEnded = true;
    if (mask & IN_UNMOUNT)
        self.isUnmounted = true;
}

EventBatch::Touch& EventBatch::TouchOf(const Place& place) {
    auto [found, isNew] = fTouches.try_emplace(place);
    if (isNew)
        fPlaces.push_back(place);
    return found->second;
}

} // namespace host

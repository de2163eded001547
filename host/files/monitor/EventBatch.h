#pragma once

#include <map>
#include <vector>

#include "host/files/monitor/Inotify.h"
#include "host/files/monitor/Trails.h"
#include "host/files/monitor/WatchTable.h"

namespace host {

// What the events of some reads say, gathered by what they are about: entries of watched
// directories, and the watched nodes themselves.
class EventBatch {
public:
    struct Touch {
        bool isCreated = false;
        bool hasArrived = false;
        bool isRemoved = false;
        // Attributes, link count, permissions, or closed after writing.
        bool isChanged = false;
    };
    struct Self {
        bool hasMoved = false;
        bool isRemoved = false;
        bool isChanged = false;
        // The system watches it no more.
        bool hasEnded = false;
        bool isUnmounted = false;
    };

    EventBatch(WatchTable& watches, Trails& trails)
        : fWatches(watches)
        , fTrails(trails) {}

    void Add(const InotifyEvent& event);

    bool HasOverflown() const { return fHasOverflown; }

    // The touched entries, in the order of their first events.
    const std::vector<Place>& Places() const { return fPlaces; }
    const Touch& At(const Place& place) const;
    const std::map<int, Self>& Selves() const { return fSelves; }

private:
    void AddEntryEvent(const Place& place, const InotifyEvent& event);
    void AddSelfEvent(const Watch& watch, uint32 mask);
    Touch& TouchOf(const Place& place);

    WatchTable& fWatches;
    Trails& fTrails;
    std::vector<Place> fPlaces;
    std::map<Place, Touch> fTouches;
    std::map<int, Self> fSelves;
    bool fHasOverflown = false;
};

} // namespace host

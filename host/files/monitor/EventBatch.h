#pragma once

#include <map>
#include <set>
#include <vector>

#include "host/files/monitor/Watches.h"

namespace host {

// The events of some reads, gathered by what they are about: the entries of watched directories,
// and the watched nodes themselves.
class EventBatch {
public:
    // The events of one name.
    struct Touch {
        struct Change {
            size_t index; // in the order of the events
            uint32 mask;
            uint32 cookie;
        };
        // It was created, removed, or moved in or out.
        std::vector<Change> changes;
        // A move ended here.
        bool hasArrived = false;
        // The attributes or permissions changed, or the file was closed after writing.
        bool isWritten = false;
    };
    // The events of a watched node.
    struct Self {
        size_t movedAt = 0;
        bool hasMoved = false;
        bool isRemoved = false;
        bool hasAttributes = false;
        bool isWritten = false;
        // The system watches it no more.
        bool hasEnded = false;
    };
    // The fate of an entry that is not at its place any more.
    enum class Fate : uint8 {
        Removed,
        MovedOut,
        // The events so far do not show where it went.
        Open,
    };

    void Add(const InotifyEvent& event);

    size_t Count() const { return fCount; }
    bool HasOverflown() const { return fHasOverflown; }
    // The touched entries, in the order of their first events.
    const std::vector<Place>& Places() const { return fPlaces; }
    const Touch& At(const Place& place) const;
    const std::map<int, Self>& Selves() const { return fSelves; }
    bool IsRemoved(int watch) const;

    // Follows the node that was at `place` before these events. `watch` is its own watch, or null.
    Fate FateOf(Place place, const Watch* watch) const;
    // The last one to come here came by a move whose other half is not among the events.
    bool CameFromOutside(const Place& place) const;

private:
    struct Arrival {
        size_t index;
        Place place;
    };

    void AddEntryEvent(const Place& place, const InotifyEvent& event);
    void AddSelfEvent(Self& self, uint32 mask) const;

    size_t fCount = 0;
    std::vector<Place> fPlaces;
    std::map<Place, Touch> fTouches;
    std::map<int, Self> fSelves;
    // By cookie.
    std::set<uint32> fLeft;
    std::map<uint32, Arrival> fArrived;
    bool fHasOverflown = false;
};

} // namespace host

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
        // It was created, removed, or moved in or out.
        bool isNamed = false;
        // A move ended here.
        bool hasArrived = false;
        // The attributes or permissions changed, or the file was closed after writing.
        bool isWritten = false;
    };
    // The events of a watched node.
    struct Self {
        bool hasMoved = false;
        bool isRemoved = false;
        bool hasAttributes = false;
        bool isWritten = false;
        // The system watches it no more.
        bool hasEnded = false;
    };

    void Add(const InotifyEvent& event);

    size_t Count() const { return fCount; }
    bool HasOverflown() const { return fHasOverflown; }
    // The touched entries, in the order of their first events.
    const std::vector<Place>& Places() const { return fPlaces; }
    Touch At(const Place& place) const;
    const std::map<int, Self>& Selves() const { return fSelves; }
    Self Of(int watch) const;

    // The places whose nodes, as far as these events show, were moved and not removed then.
    std::set<Place> Left() const;
    // The node that is here now came by a move from where nobody watches, perhaps over others.
    bool CameFromOutside(const Place& place) const;

private:
    void AddEntryEvent(const Place& place, const InotifyEvent& event);
    void AddSelfEvent(Self& self, uint32 mask) const;
    void FollowNode(const Place& place, const InotifyEvent& event);

    size_t fCount = 0;
    std::vector<Place> fPlaces;
    std::map<Place, Touch> fTouches;
    std::map<int, Self> fSelves;
    // Where the node at each touched place was before these events.
    std::map<Place, Place> fOrigins;
    // The same of the nodes between the two halves of a move, by its cookie.
    std::map<uint32, Place> fMoving;
    bool fHasOverflown = false;
};

} // namespace host

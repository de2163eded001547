#pragma once

#include <sys/inotify.h>

#include <map>
#include <set>
#include <vector>

#include "host/files/monitor/Watches.h"

namespace host {

// The events of some reads, gathered by what they are about: the entries of watched directories,
// and the watched nodes themselves.
class EventBatch {
public:
    // The entry was created, removed, or moved in or out.
    static constexpr uint32 kNameChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

    void Add(const InotifyEvent& event);

    size_t Count() const { return fCount; }
    bool HasOverflown() const { return fHasOverflown; }
    // The touched entries, in the order of their first events.
    const std::vector<Place>& Places() const { return fPlaces; }
    // What happened to the entry, as one mask.
    uint32 At(const Place& place) const;
    // What happened to the watched nodes, as one mask each; by the numbers of their watches.
    const std::map<int, uint32>& Selves() const { return fSelves; }
    uint32 Of(int watch) const;

    // The places whose nodes, as far as these events show, were moved and not removed then.
    std::set<Place> Left() const;
    // The node that is here now came by a move from where nobody watches, perhaps over others.
    bool CameFromOutside(const Place& place) const;

private:
    void FollowNode(const Place& place, const InotifyEvent& event);

    size_t fCount = 0;
    std::vector<Place> fPlaces;
    std::map<Place, uint32> fTouches;
    std::map<int, uint32> fSelves;
    // Where the node at each touched place was before these events.
    std::map<Place, Place> fOrigins;
    // The same of the nodes between the two halves of a move, by its cookie.
    std::map<uint32, Place> fMoving;
    bool fHasOverflown = false;
};

} // namespace host

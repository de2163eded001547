#pragma once

#include <list>
#include <map>
#include <string>

#include "host/files/monitor/WatchTable.h"

namespace host {

// Where the events say that one node went.
struct Trail {
    enum class Start : uint8 {
        Known,   // an entry that was known
        Created, // made since
        Outside, // came from a directory that is not watched
    };
    enum class State : uint8 {
        Here,    // at `place`
        Carried, // left `place` in a move whose second half has not come
        Gone,    // removed or replaced
    };

    Start start = Start::Known;
    State state = State::Here;
    Place place;
    uint32 cookie = 0;

    // Of a known one: what it is and where it was when the listeners were last told.
    node_ref node;
    KnownEntry entry;
    Place origin;
    int64 directory = 0;
    std::string path;

    // No second half will come.
    bool isDecided = false;
    // When waiting for it ends; 0 while it does not wait.
    bigtime_t deadline = 0;
};

// Follows nodes through the events of a batch, and through the next ones while the second half of a
// move is outstanding. The halves belong together by their cookie; foreign events and ends of reads
// may come between.
class Trails {
public:
    explicit Trails(WatchTable& watches)
        : fWatches(watches) {}

    // The events, in their order.
    void Created(const Place& place);
    void Removed(const Place& place);
    void Left(const Place& place, uint32 cookie);
    void Arrived(const Place& place, uint32 cookie);
    // The node's own end of a move: the second half comes before it or never.
    void MoveEnded(node_ref node);
    // The node is gone, wherever it is now. False if nothing is known about where that was.
    bool NodeRemoved(const Watch& watch, Place& place);

    // What the events say is at the place now; null if they say nothing about it.
    const Trail* At(const Place& place) const;

    std::list<Trail>& All() { return fTrails; }

    // Between batches: the trail that waits for the node, or null.
    Trail* Find(node_ref node);

    // Where the events say that the directory of this watch is now, or "".
    std::string PathOfNode(node_ref node);

    // Forgets all trails but those that wait.
    void EndBatch();
    void ForgetDirectory(int watch);
    void ForgetAll();

    // The next end of a wait, 0 if none waits.
    bigtime_t NextDeadline() const;

private:
    Trail* TenantOf(const Place& place);
    Trail& Start(Trail::Start start, const Place& place);
    void Vacate(const Place& place) { fTenants[place] = nullptr; }

    WatchTable& fWatches;
    std::list<Trail> fTrails;
    // Null: nothing is there.
    std::map<Place, Trail*> fTenants;
    std::map<uint32, Trail*> fCarried;
    std::map<node_ref, Trail*> fByNode;
};

} // namespace host

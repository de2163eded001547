#pragma once

#include <map>
#include <set>
#include <vector>

#include "host/files/monitor/EventBatch.h"

namespace host {

// Compares the name tables of the watched directories with the disk where a batch of events touched
// them, and notifies the differences. A node that is gone at one place and has come at another was
// moved. The events only decide what else a difference means: whether an entry that is gone was
// removed or moved away, whether one that is there was made or moved in.
class EntryComparison {
public:
    // How long the second half of a move may take.
    static constexpr bigtime_t kGraceTime = 100'000;
    // How long nothing must have happened to a new file before it is announced.
    static constexpr bigtime_t kQuietTime = 50'000;

    EntryComparison(MonitorState& state, const EventBatch& batch, bigtime_t now)
        : fState(state)
        , fBatch(batch)
        , fLeft(batch.Left())
        , fNow(now) {}

    void Run();

private:
    // An entry that has come to a place, perhaps earlier than the events of its move.
    struct Candidate {
        Place place;
        NodeStatus status;
        bool isNew = false;
    };

    void CompareTouched();
    bool CompareUnread();
    void CompareAll(Watch& watch, const Descriptor& directory);
    void Compare(const Place& place, const NodeStatus& status);

    void Settle();
    void SettleGone(DepartedEntry& gone);
    void SettleNew(const Candidate& candidate);

    void Move(const DepartedEntry& departed, const Place& place, const NodeStatus& status);
    void MoveOut(const DepartedEntry& departed);
    void NotifyMove(const DepartedEntry& departed, int64 toDirectory, const std::string& name);
    void NotifyCreated(const Place& place, const KnownEntry& entry);
    void Stir(const Place& place);
    void EndWaiting();
    void Announce(const Place& place);

    // The directory is held for one batch only: its disk could not be unmounted otherwise.
    const Descriptor& DirectoryOf(int watch);
    bool HasType(const Place& place);

    MonitorState& fState;
    const EventBatch& fBatch;
    const std::set<Place> fLeft;
    const bigtime_t fNow;
    std::map<int, Descriptor> fDirectories;
    std::vector<DepartedEntry> fGone;
    std::multimap<node_ref, Candidate> fCandidates;
    std::vector<int> fDropped;
};

} // namespace host

#pragma once

#include <map>
#include <set>
#include <vector>

#include "host/files/monitor/DiskView.h"
#include "host/files/monitor/EventBatch.h"
#include "host/files/monitor/MonitorState.h"

namespace host {

// Brings the name tables of the watched directories in line with the disk, and tells the
// difference. The events say where to look, and what a difference means: whether an entry that is
// gone was removed or moved away, whether one that is there was made or moved in.
class EntryReconciler {
public:
    // How long the second half of a move may take.
    static constexpr bigtime_t kGraceTime = 100'000;

    EntryReconciler(MonitorState& state, const EventBatch& batch, bigtime_t now)
        : fState(state)
        , fBatch(batch)
        , fNow(now)
        , fView(state) {}

    void Settle();
    // Announces the new files that have been left alone for long enough.
    void SettleQuiet();

    // The directories that could not be found.
    std::vector<int> Missing() const { return fView.Missing(); }

private:
    enum class Verdict : uint8 {
        Unchanged,
        Removed,
        Moved,
        MovedOut,
        Waiting,
    };
    struct Judgement {
        Trail trail;
        Verdict verdict;
        Place place;
    };

    void LookAround();
    Judgement Judge(Trail& trail);
    bool IsUnchanged(const Trail& trail);
    bool FindArrival(const Trail& trail, Place& place);
    void JudgeAll();

    void Vacate(const Trail& trail);
    void Restore(const Trail& trail);
    void TellRemoved(const Trail& trail);
    void TellRemoved(const Place& place, const KnownEntry& entry);
    void TellMovedOut(const Trail& trail);
    void TellMoved(const Trail& trail, const Place& place);
    void SettleArrival(const Place& place);
    void SettleNew(const Place& place);
    void Rescan(int number);
    std::vector<Watch*> WatchesMovedTo(const Place& place);
    void TellArrived(const Place& place, const NodeStatus& status);
    void TellCreated(const Place& place, const KnownEntry& entry);
    void SettleChange(const Place& place);
    void Announce(const Place& place, KnownEntry& entry);

    void Put(const Place& place, KnownEntry entry);
    NameTable* NamesOf(const Place& place);

    MonitorState& fState;
    const EventBatch& fBatch;
    bigtime_t fNow;
    DiskView fView;
    std::multimap<node_ref, Place> fArrivals;
    std::set<node_ref> fMade;
    std::vector<Judgement> fJudgements;
    std::vector<int> fDropped;
    // Places whose entries are accounted for.
    std::set<Place> fSettled;
};

} // namespace host

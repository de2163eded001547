#pragma once

#include <vector>

#include "host/files/monitor/EventBatch.h"
#include "host/files/monitor/MonitorState.h"

namespace host {

// Looks at the watched nodes themselves and tells what became of them. What their directories tell,
// if those are watched, is left to them.
class SelfReconciler {
public:
    explicit SelfReconciler(MonitorState& state)
        : fState(state) {}

    void Settle(const EventBatch& batch);

    // A directory that is not where it was: ends its watch if that is because of its ancestors, of
    // which the system tells nothing.
    void CheckMissing(const std::vector<int>& directories);

    // Changes were lost: reads everything anew.
    void Recover();

private:
    void SettleRemoval(Watch& watch);
    void SettleEnds(const EventBatch& batch);
    void FindAgain(int number, bool hasMoved);
    void Compare(int number);
    void Recover(int number);
    void TellLost(const Watch& watch, const Watch* except);
    NodeChange Departure(const Watch& watch, ChangeKind kind) const;

    MonitorState& fState;
};

} // namespace host

#pragma once

#include "host/files/monitor/EventBatch.h"

namespace host {

// Compares the watched nodes themselves with the disk and notifies the differences. Departures that
// the directory of a node reports, if that is watched, are left to it.
class NodeComparison {
public:
    explicit NodeComparison(MonitorState& state)
        : fState(state) {}

    void Run(const EventBatch& batch);

    // Changes were lost: compares everything.
    void Recover();

private:
    void SettleEnds(const EventBatch& batch);
    void SettleUnread();
    void SearchNode(int number, bool hasMoved);
    void Compare(int number, bool hasAttributes);
    void Recover(int number);

    MonitorState& fState;
};

} // namespace host

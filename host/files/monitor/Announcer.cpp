#include "host/files/monitor/Announcer.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

uint32 FlagFor(ChangeKind kind) {
    switch (kind) {
    case ChangeKind::StatusChanged:
        return kWatchStatus;
    case ChangeKind::AttributeChanged:
        return kWatchAttributes;
    default:
        return kWatchName;
    }
}

bool Contains(const std::vector<std::shared_ptr<NodeListener>>& listeners,
              const std::shared_ptr<NodeListener>& listener) {
    return std::find(listeners.begin(), listeners.end(), listener) != listeners.end();
}

} // namespace

void Announcer::Tell(const NodeChange& change, bool toDirectories) {
    Listeners listeners;
    Collect(listeners, change.node, FlagFor(change.kind));
    if (toDirectories) {
        Collect(listeners, {change.node.device, change.directory}, kWatchEntries);
        Collect(listeners, {change.node.device, change.toDirectory}, kWatchEntries);
    }
    Send(listeners, change);
}

void Announcer::TellAll(const Watch& watch, const NodeChange& change, const Watch* except) {
    Listeners told;
    if (except)
        Collect(told, except->Node(), kWatchEntries);
    Listeners listeners;
    for (const auto& [listener, flags] : watch.listeners) {
        if (!Contains(told, listener))
            listeners.push_back(listener);
    }
    Send(listeners, change);
}

std::vector<std::shared_ptr<NodeListener>> Announcer::TakeGone() {
    return std::exchange(fGone, {});
}

void Announcer::Collect(Listeners& listeners, node_ref node, uint32 flag) {
    for (Watch* watch : fWatches.FindNode(node)) {
        for (const auto& [listener, flags] : watch->listeners) {
            if ((flags & flag) && !Contains(listeners, listener))
                listeners.push_back(listener);
        }
    }
}

void Announcer::Send(const Listeners& listeners, const NodeChange& change) {
    for (const auto& listener : listeners) {
        if (!listener->NodeChanged(change))
            fGone.push_back(listener);
    }
}

} // namespace host

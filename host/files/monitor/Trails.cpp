#include "host/files/monitor/Trails.h"

namespace host {

void Trails::Created(const Place& place) {
    // Something that was there has gone without a word, by an exchange with an unwatched directory.
    if (Trail* tenant = TenantOf(place))
        tenant->state = Trail::State::Gone;
    Start(Trail::Start::Created, place);
}

void Trails::Removed(const Place& place) {
    if (Trail* tenant = TenantOf(place))
        tenant->state = Trail::State::Gone;
    Vacate(place);
}

void Trails::Left(const Place& place, uint32 cookie) {
    Trail* tenant = TenantOf(place);
    // Nothing known was there: something that came and went unnoticed.
    if (!tenant)
        tenant = &Start(Trail::Start::Created, place);
    tenant->state = Trail::State::Carried;
    tenant->cookie = cookie;
    fCarried[cookie] = tenant;
    Vacate(place);
}

void Trails::Arrived(const Place& place, uint32 cookie) {
    // No removal is told for what a move replaces.
    if (Trail* replaced = TenantOf(place))
        replaced->state = Trail::State::Gone;
    auto carried = fCarried.find(cookie);
    if (carried == fCarried.end()) {
        Start(Trail::Start::Outside, place);
        return;
    }
    Trail* trail = carried->second;
    fCarried.erase(carried);
    trail->state = Trail::State::Here;
    trail->place = place;
    trail->isDecided = false;
    fTenants[place] = trail;
}

void Trails::MoveEnded(node_ref node) {
    Trail* trail = Find(node);
    if (trail && trail->state == Trail::State::Carried)
        trail->isDecided = true;
}

bool Trails::NodeRemoved(const Watch& watch, Place& place) {
    Trail* trail = Find(watch.Node());
    if (!trail) {
        Watch* parent = fWatches.ParentOf(watch);
        trail = parent ? TenantOf({parent->number, watch.Name()}) : nullptr;
    }
    if (!trail || trail->node != watch.Node())
        return false;
    if (trail->state == Trail::State::Here)
        Vacate(trail->place);
    trail->state = Trail::State::Gone;
    place = trail->place;
    return true;
}

const Trail* Trails::At(const Place& place) const {
    auto found = fTenants.find(place);
    return found == fTenants.end() ? nullptr : found->second;
}

std::string Trails::PathOfNode(node_ref node) {
    Trail* trail = Find(node);
    return trail && trail->state == Trail::State::Here ? fWatches.PathOf(trail->place) : "";
}

void Trails::EndBatch() {
    fTenants.clear();
    fByNode.clear();
    std::erase_if(fTrails, [](const Trail& trail) { return trail.deadline == 0; });
    for (Trail& trail : fTrails) {
        // Where the disk shows another, the events misled: an exchange.
        if (trail.state == Trail::State::Here && !fWatches.FindEntry(trail.place))
            fTenants[trail.place] = &trail;
        if (trail.start == Trail::Start::Known)
            fByNode[trail.node] = &trail;
    }
    fCarried.clear();
    for (Trail& trail : fTrails) {
        if (trail.state == Trail::State::Carried)
            fCarried[trail.cookie] = &trail;
    }
}

void Trails::ForgetDirectory(int watch) {
    for (Trail& trail : fTrails) {
        if (trail.origin.watch == watch || trail.place.watch == watch)
            trail.deadline = 0;
    }
    EndBatch();
}

void Trails::ForgetAll() {
    for (Trail& trail : fTrails)
        trail.deadline = 0;
    EndBatch();
}

bigtime_t Trails::NextDeadline() const {
    bigtime_t next = 0;
    for (const Trail& trail : fTrails) {
        if (trail.deadline != 0 && (next == 0 || trail.deadline < next))
            next = trail.deadline;
    }
    return next;
}

Trail* Trails::TenantOf(const Place& place) {
    auto found = fTenants.find(place);
    if (found != fTenants.end())
        return found->second;
    KnownEntry* entry = fWatches.FindEntry(place);
    if (!entry)
        return nullptr;
    Watch* watch = fWatches.Find(place.watch);
    Trail& trail = Start(Trail::Start::Known, place);
    trail.node = {watch->Node().device, entry->node};
    trail.entry = *entry;
    trail.origin = place;
    trail.directory = watch->Node().node;
    trail.path = fWatches.PathOf(place);
    fByNode[trail.node] = &trail;
    return &trail;
}

Trail& Trails::Start(Trail::Start start, const Place& place) {
    Trail& trail = fTrails.emplace_back();
    trail.start = start;
    trail.place = place;
    fTenants[place] = &trail;
    return trail;
}

Trail* Trails::Find(node_ref node) {
    auto found = fByNode.find(node);
    return found == fByNode.end() ? nullptr : found->second;
}

} // namespace host

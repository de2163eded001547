#include "host/files/monitor/MonitorState.h"

#include "host/files/DirectoryScan.h"
#include "host/files/Files.h"
#include "host/files/Paths.h"
#include "host/files/monitor/KnownPaths.h"

namespace host {

namespace {

// A name that changes while the directory is read may be missed.
constexpr int kAttempts = 8;

bool FindIn(const std::string& directory, const Watch& watch, std::string& path, Descriptor& node) {
    DirectoryScan scan;
    if (scan.Open(directory) != B_OK)
        return false;
    DirectoryScan::Entry entry;
    while (scan.Next(entry) == B_OK) {
        path = Join(directory, entry.name);
        if (MonitorState::Hold(watch, path, node))
            return true;
    }
    return false;
}

} // namespace

void MonitorState::Drop(int number) {
    inotify.Remove(number);
    Forget(number);
}

void MonitorState::Forget(int number) {
    trails.ForgetDirectory(number);
    quiet.ForgetDirectory(number);
    watches.Remove(number);
}

bool MonitorState::Hold(const Watch& watch, const std::string& path, Descriptor& node) {
    NodeStatus status;
    return HoldNode(path, node) == B_OK && LookAt(node.Get(), "", status) == B_OK &&
           status.ref == watch.status.ref;
}

// Most moves of a single node are renames.
bool MonitorState::Find(const Watch& watch, std::string& path, Descriptor& node) {
    std::string directory = ParentPath(watch.path);
    for (int attempt = 0; attempt < kAttempts; attempt++) {
        NodeStatus parent;
        path = watch.path;
        if (Hold(watch, path, node))
            return true;
        if (LookAt(directory, parent, true) != B_OK || parent.ref != watch.parent)
            return false;
        if (FindIn(directory, watch, path, node))
            return true;
    }
    return false;
}

void MonitorState::FollowMove(node_ref node, std::string from, const std::string& to,
                              node_ref parent, bool isDirectory) {
    watches.Moved(node, from, to, parent, isDirectory);
    KnownPaths::Shared().Moved(node, from, to, isDirectory);
}

} // namespace host

#pragma once

#include "host/files/monitor/Announcer.h"
#include "host/files/monitor/Inotify.h"
#include "host/files/monitor/QuietFiles.h"
#include "host/files/monitor/Trails.h"
#include "host/files/monitor/WatchTable.h"

namespace host {

// What the parts of the node monitor work on together.
struct MonitorState {
    // Ends a watch.
    void Drop(int number);
    // Forgets a watch that the system has ended.
    void Forget(int number);

    // Holds the node of a watch by the path it was last seen at, or another; false if that leads
    // elsewhere.
    static bool Hold(const Watch& watch, Descriptor& node) { return Hold(watch, watch.path, node); }
    static bool Hold(const Watch& watch, const std::string& path, Descriptor& node);

    // Holds the node where it was last seen or under another name beside that.
    static bool Find(const Watch& watch, std::string& path, Descriptor& node);

    // The node went from one path to another. `from` may be the path of a watch, which changes.
    void FollowMove(node_ref node, std::string from, const std::string& to, node_ref parent,
                    bool isDirectory);

    Inotify inotify;
    WatchTable watches;
    Trails trails{watches};
    QuietFiles quiet;
    Announcer announcer{watches};
};

} // namespace host

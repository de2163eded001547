#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/files/monitor/Watches.h"

namespace host {

// A time for each of some keys.
template <typename Key>
class Deadlines {
public:
    void Set(const Key& key, bigtime_t time) {
        Remove(key);
        fTimes[key] = time;
        fQueue.insert({time, key});
    }

    void Remove(const Key& key) {
        auto found = fTimes.find(key);
        if (found == fTimes.end())
            return;
        fQueue.erase({found->second, key});
        fTimes.erase(found);
    }

    // The keys whose time has come; they are removed.
    std::vector<Key> TakeDue(bigtime_t now) {
        std::vector<Key> due;
        while (!fQueue.empty() && fQueue.begin()->first <= now) {
            due.push_back(fQueue.begin()->second);
            Remove(due.back());
        }
        return due;
    }

    void Clear() {
        fTimes.clear();
        fQueue.clear();
    }

    // 0 when there is no key.
    bigtime_t Next() const { return fQueue.empty() ? 0 : fQueue.begin()->first; }

private:
    std::map<Key, bigtime_t> fTimes;
    std::set<std::pair<bigtime_t, Key>> fQueue;
};

// An entry that is not at its place any more.
struct DepartedEntry {
    node_ref node;
    KnownEntry entry = {};
    Place origin = {};
    int64 directory = 0;
    std::string path = {};
};

// The state of the node monitor between its batches of events.
struct MonitorState {
    // Ends a watch.
    void Drop(int number);
    // Forgets a watch that the system has ended.
    void Forget(int number);
    void ForgetEntries(int number);
    void ForgetAllEntries();
    // The next end of a waiting time; 0 when nothing is waited for.
    bigtime_t NextDeadline() const;

    Inotify inotify;
    Watches watches;
    // Entries that left by a move whose other half has not come yet.
    std::map<node_ref, DepartedEntry> moves;
    Deadlines<node_ref> moveEnds;
    // New files, and files without a type, until nothing has happened to them for a while: programs
    // that copy create a file, fill it, close it and only then set its attributes.
    Deadlines<Place> quiet;
    // The watches of directories that were not at their paths when their events came.
    std::set<int> unread;
};

} // namespace host

#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "host/files/monitor/NodeStatus.h"
#include "host/loop/Descriptor.h"

namespace host {

// What is known of a directory's entry.
struct KnownEntry {
    int64 node = 0;
    NodeKind kind = NodeKind::Unknown;
    // Listeners know of it, or it was there before them.
    bool isAnnounced = true;
    // It was announced without a MIME type, which may come later.
    bool lacksType = false;
};

// The names in a watched directory and the nodes behind them: the system's events tell names only,
// and a node that is gone cannot be looked at any more.
class NameTable {
public:
    status_t Fill(const Descriptor& directory);

    // The names that stand for nothing, or another node, in `other`.
    std::vector<std::string> NamesUnlike(const NameTable& other) const;

    // Null if there is no such name. Valid until the table changes.
    KnownEntry* Find(const std::string& name);
    void Put(const std::string& name, const KnownEntry& entry) { fEntries[name] = entry; }
    void Erase(const std::string& name) { fEntries.erase(name); }

private:
    std::unordered_map<std::string, KnownEntry> fEntries;
};

} // namespace host

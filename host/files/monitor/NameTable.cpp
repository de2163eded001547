#include "host/files/monitor/NameTable.h"

#include "host/files/DirectoryScan.h"

namespace host {

status_t NameTable::Fill(const Descriptor& directory) {
    fEntries.clear();
    DirectoryScan scan;
    status_t status = scan.Open(directory);
    if (status != B_OK)
        return status;
    DirectoryScan::Entry entry;
    while ((status = scan.Next(entry)) == B_OK) {
        NodeStatus there;
        if (LookAt(scan.Get(), entry.name, there) == B_OK)
            Put(entry.name, {.node = there.ref.node, .kind = there.kind});
    }
    return status == B_ENTRY_NOT_FOUND ? B_OK : status;
}

std::vector<std::string> NameTable::NamesUnlike(const NameTable& other) const {
    std::vector<std::string> names;
    for (const auto& [name, entry] : fEntries) {
        auto found = other.fEntries.find(name);
        if (found == other.fEntries.end() || found->second.node != entry.node)
            names.push_back(name);
    }
    return names;
}

KnownEntry* NameTable::Find(const std::string& name) {
    auto found = fEntries.find(name);
    return found == fEntries.end() ? nullptr : &found->second;
}

} // namespace host

#include "host/files/monitor/NameTable.h"

#include "host/files/DirectoryScan.h"

namespace host {

status_t NameTable::Fill(const Descriptor& directory) {
    fEntries.clear();
    DirectoryScan scan;
    status_t status = scan.Open(directory);
    if (status != B_OK)
        return status;
    bool tellsNumbers = TellsNodeNumbers(scan.Get());
    DirectoryScan::Entry entry;
    while ((status = scan.Next(entry)) == B_OK) {
        NodeStatus there;
        if (!tellsNumbers && LookAt(scan.Get(), entry.name, there) == B_OK)
            entry.node = there.ref.node;
        Put(entry.name, {.node = entry.node, .kind = entry.kind});
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

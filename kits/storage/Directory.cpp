#include "kits/storage/Directory.h"

#include "host/files/Files.h"
#include "host/files/NodeStatus.h"
#include "host/files/Paths.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"

BDirectory::~BDirectory() = default;

BDirectory::BDirectory(const char* path) {
    SetTo(path);
}

BDirectory::BDirectory(const BEntry* entry) {
    SetTo(entry);
}

status_t BDirectory::SetTo(const char* path) {
    BEntry entry(path);
    return SetTo(&entry);
}

status_t BDirectory::SetTo(const BEntry* entry) {
    if (entry && entry->InitCheck() == B_OK)
        return SetToHostPath(entry->fHostPath);
    Unset();
    return Fail(entry ? entry->InitCheck() : B_BAD_VALUE);
}

status_t BDirectory::SetToHostPath(const std::string& path) {
    Unset();
    host::NodeStatus there;
    status_t status = host::Stat(path, there, true);
    if (status == B_OK && there.kind != host::NodeKind::Directory)
        status = B_NOT_A_DIRECTORY;
    host::Descriptor node;
    if (status == B_OK)
        status = host::OpenPathOnly(path, node, true);
    auto scan = std::make_unique<host::DirectoryScan>();
    if (status == B_OK)
        status = scan->Open(node);
    if (status != B_OK)
        return Fail(status);
    fHostPath = path;
    fScan = std::move(scan);
    return SetToDescriptor(std::move(node));
}

void BDirectory::Unset() {
    fScan.reset();
    fHostPath.clear();
    BNode::Unset();
}

status_t BDirectory::GetNextEntry(BEntry* entry, bool traverse) {
    if (!entry)
        return B_BAD_VALUE;
    entry->Unset();
    if (InitCheck() != B_OK)
        return InitCheck();
    host::DirectoryScan::Entry next;
    status_t status = fScan->Next(next);
    if (status != B_OK)
        return status;
    std::string path = host::Join(fHostPath, next.name);
    bool mayBeLink = next.kind == host::NodeKind::Link || next.kind == host::NodeKind::Unknown;
    if (traverse && mayBeLink) {
        entry->SetToHostPath(std::move(path), true);
        return B_OK;
    }
    entry->fHostPath = std::move(path);
    entry->fKind = next.kind;
    entry->fStatus = B_OK;
    return B_OK;
}

std::string BDirectory::HostPathOf(const char* path) const {
    if (InitCheck() != B_OK || !path || path[0] == '\0')
        return "";
    return path[0] == '/' ? host::HostPath(host::PlainPath(path)) : fHostPath + "/" + path;
}

status_t create_directory(const char* path, mode_t mode) {
    BPath plain;
    status_t status = plain.SetTo(path);
    return status == B_OK ? host::CreateDirectories(host::HostPath(plain.Path()), mode) : status;
}

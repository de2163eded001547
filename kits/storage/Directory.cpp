#include "kits/storage/Directory.h"

#include "host/files/Files.h"
#include "host/files/NodeStatus.h"
#include "host/files/Paths.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"

BDirectory::BDirectory(const BEntry* entry)
    : fScan(std::make_unique<host::DirectoryScan>())
    , fStatus(entry ? entry->InitCheck() : B_BAD_VALUE) {
    if (fStatus != B_OK)
        return;
    fHostPath = entry->fHostPath;
    fStatus = fScan->Open(fHostPath);
}

BDirectory::~BDirectory() = default;

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

status_t create_directory(const char* path, mode_t mode) {
    BPath plain;
    status_t status = plain.SetTo(path);
    return status == B_OK ? host::CreateDirectories(host::HostPath(plain.Path()), mode) : status;
}

#include "kits/storage/Entry.h"

#include "host/files/Attributes.h"
#include "host/files/Files.h"
#include "host/files/KnownPaths.h"
#include "host/files/Paths.h"
#include "kits/storage/Path.h"

BEntry::BEntry(const char* path, bool traverse) {
    SetTo(path, traverse);
}

BEntry::BEntry(const entry_ref* ref, bool traverse) {
    SetTo(ref, traverse);
}

status_t BEntry::SetTo(const char* path, bool traverse) {
    BPath plain;
    status_t status = plain.SetTo(path);
    return status == B_OK ? SetToHostPath(host::HostPath(plain.Path()), traverse) : Fail(status);
}

status_t BEntry::SetTo(const entry_ref* ref, bool traverse) {
    // Not an alias: unsetting must not touch it.
    std::string directory;
    status_t status = B_BAD_VALUE;
    if (ref && !ref->name.empty() && ref->name != "." && ref->name != ".." &&
        ref->name.find('/') == std::string::npos)
        status = host::KnownPaths::Shared().Find({ref->device, ref->directory}, directory);
    return status == B_OK ? SetToHostPath(host::Join(directory, ref->name), traverse)
                          : Fail(status);
}

void BEntry::Unset() {
    Fail(B_NO_INIT);
}

status_t BEntry::Fail(status_t status) {
    fHostPath.clear();
    fKind.reset();
    return fStatus = status;
}

status_t BEntry::SetToHostPath(std::string path, bool traverse) {
    Unset();
    host::NodeStatus there;
    status_t status = host::Stat(path, there);
    if (traverse && there.kind == host::NodeKind::Link)
        status = host::ResolvePath(path, path);
    else if (status == B_ENTRY_NOT_FOUND)
        status = B_OK;
    if (status == B_OK)
        fHostPath = std::move(path);
    return fStatus = status;
}

bool BEntry::Exists() const {
    host::NodeStatus there;
    return host::Stat(fHostPath, there) == B_OK;
}

bool BEntry::IsFile() const {
    return Kind() == host::NodeKind::File;
}

bool BEntry::IsDirectory() const {
    return Kind() == host::NodeKind::Directory;
}

bool BEntry::IsSymLink() const {
    return Kind() == host::NodeKind::Link;
}

host::NodeKind BEntry::Kind() const {
    if (fKind && *fKind != host::NodeKind::Unknown)
        return *fKind;
    host::NodeStatus there;
    host::Stat(fHostPath, there);
    // The directory of a scan did not keep the kind.
    if (fKind)
        fKind = there.kind;
    return there.kind;
}

status_t BEntry::GetPath(BPath* path) const {
    if (fStatus != B_OK)
        return fStatus;
    return path ? path->SetTo(host::PlatformPath(fHostPath).c_str()) : B_BAD_VALUE;
}

status_t BEntry::GetRef(entry_ref* ref) const {
    if (fStatus != B_OK)
        return fStatus;
    if (!ref)
        return B_BAD_VALUE;
    std::string directory = host::ParentPath(fHostPath);
    host::NodeStatus there;
    status_t status = host::Stat(directory, there, true);
    if (status != B_OK)
        return status;
    host::KnownPaths::Shared().Remember(there.ref, directory);
    *ref = entry_ref(there.ref.device, there.ref.node, host::LeafOf(fHostPath).c_str());
    return B_OK;
}

status_t BEntry::GetNodeRef(node_ref* ref) const {
    if (fStatus != B_OK)
        return fStatus;
    host::NodeStatus there;
    status_t status = ref ? host::Stat(fHostPath, there) : B_BAD_VALUE;
    if (status != B_OK)
        return status;
    host::KnownPaths::Shared().Remember(there.ref, fHostPath);
    *ref = there.ref;
    return B_OK;
}

status_t BEntry::GetVolume(BVolume* volume) const {
    if (fStatus != B_OK)
        return fStatus;
    host::NodeStatus there;
    status_t status = volume ? host::Stat(fHostPath, there, true) : B_BAD_VALUE;
    if (status != B_OK)
        return status;
    volume->fHostPath = fHostPath;
    return volume->fStatus = B_OK;
}

status_t BEntry::Rename(const char* path, bool clobber) {
    if (fStatus != B_OK)
        return fStatus;
    BPath target;
    std::string directory = host::PlatformPath(host::ParentPath(fHostPath));
    status_t status = B_BAD_VALUE;
    if (path && path[0] == '/')
        status = target.SetTo(path);
    else if (path && path[0] != '\0')
        status = target.SetTo(directory.c_str(), path);
    if (status != B_OK)
        return status;
    std::string to = host::HostPath(target.Path());
    status = host::Rename(fHostPath, to, clobber);
    if (status == B_OK) {
        fHostPath = to;
        fKind.reset();
    }
    return status;
}

status_t BEntry::Remove() {
    return fStatus == B_OK ? host::Remove(fHostPath) : fStatus;
}

bool BVolume::KnowsAttr() const {
    return fStatus == B_OK && host::KeepsAttributes(fHostPath);
}

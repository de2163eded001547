#pragma once

#include <optional>
#include <string>

#include "base/EntryRef.h"
#include "host/files/NodeStatus.h"
#include "kits/storage/StorageDefs.h"

class BDirectory;
class BMessenger;
class BNode;
class BPath;
class BVolume;

// A place in the file system: a directory and a name in it. Nothing need be there. It holds no
// descriptor, so it names whatever is at that place when it is asked. A value; any thread may use
// its own.
class BEntry {
public:
    BEntry() = default;
    explicit BEntry(const char* path, bool traverse = false);
    explicit BEntry(const entry_ref* ref, bool traverse = false);

    // B_OK when a place is set, B_NO_INIT when none is, or the failure of the last SetTo.
    status_t InitCheck() const { return fStatus; }

    // Sets the place. With `traverse`, if a symbolic link is there, the place is the one that the
    // link leads to in the end: B_ENTRY_NOT_FOUND if it dangles, B_LINK_LIMIT if it loops.
    // A missing entry is no failure, nor is a missing directory on the way to it;
    // B_NOT_A_DIRECTORY, B_PERMISSION_DENIED, B_NAME_TOO_LONG and B_BAD_VALUE (no path, a name with
    // a slash) are. With an entry_ref, the directory must be known, or it is
    // B_ENTRY_NOT_FOUND: the system opens files by path, refs name directories by number, and the
    // paths of the directories and nodes whose numbers were handed out are remembered (some
    // thousands; the longest unused are forgotten), checked when they are used, and follow the
    // renames that the node monitor sees.
    status_t SetTo(const char* path, bool traverse = false);
    status_t SetTo(const entry_ref* ref, bool traverse = false);
    void Unset();

    // Whether anything is there now; a link that dangles counts.
    bool Exists() const;

    // The kind of the node that is there; all are false when nothing is. For an entry from
    // BDirectory::GetNextEntry it is the kind at that time, without a look at the disk where
    // directories keep it.
    bool IsFile() const;
    bool IsDirectory() const;
    bool IsSymLink() const;

    status_t GetPath(BPath* path) const;
    // Names the entry by the node of its directory, which must exist.
    status_t GetRef(entry_ref* ref) const;
    // Names the node that is there, a link itself if it is one. B_ENTRY_NOT_FOUND if nothing is.
    status_t GetNodeRef(node_ref* ref) const;
    // The disk that the node that is there, or that a link there leads to, is on.
    status_t GetVolume(BVolume* volume) const;

    // Moves the node that is there to `path` (relative: in the same directory); the object then
    // stands for the new place. B_FILE_EXISTS if something is there and `clobber` is false; with
    // `clobber` it is replaced in one step, and the directory is on the disk when the call returns.
    status_t Rename(const char* path, bool clobber = false);
    // Removes the file, link or empty directory (B_DIRECTORY_NOT_EMPTY).
    status_t Remove();

private:
    friend class BDirectory;
    friend class BNode;
    friend status_t watch_entry(const BEntry& entry, uint32 flags, const BMessenger& target,
                                BNode* node, entry_ref* ref, node_ref* number);

    status_t SetToHostPath(std::string path, bool traverse);
    status_t Fail(status_t status);
    host::NodeKind Kind() const;

    std::string fHostPath;
    status_t fStatus = B_NO_INIT;
    // The kind that the directory kept; only set by a scan.
    mutable std::optional<host::NodeKind> fKind;
};

// A mounted disk, as seen from one entry on it: BEntry::GetVolume sets it. A value.
class BVolume {
public:
    BVolume() = default;

    // Whether files there can have attributes. It is learned by asking the entry for an attribute
    // that it does not have: a disk without attributes answers differently from one with them, and
    // nothing is written.
    bool KnowsAttr() const;

private:
    friend class BEntry;

    std::string fHostPath;
    status_t fStatus = B_NO_INIT;
};

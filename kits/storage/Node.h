#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "base/EntryRef.h"
#include "base/TypeConstants.h"
#include "host/loop/Descriptor.h"
#include "kits/storage/StorageDefs.h"

class BEntry;
class BMessenger;
class BPath;

// The type and size of an attribute. The disk keeps no types: `type` is always B_STRING_TYPE.
struct attr_info {
    type_code type = B_STRING_TYPE;
    off_t size = 0;
};

// A node itself, whatever its name becomes, and its attributes. Attributes are the extended
// attributes of the "user." name space, byte for byte: "META:url" is "user.META:url".
//
// The node is held without being opened for reading or writing, so a FIFO does not block and
// only the operations need permissions. Not copyable; one thread at a time.
class BNode {
public:
    BNode() = default;
    explicit BNode(const char* path);
    explicit BNode(const BEntry* entry);
    virtual ~BNode() = default;

    // B_OK when a node is held, B_NO_INIT when none is, or the failure of the last SetTo.
    status_t InitCheck() const { return fStatus; }

    // Holds the node that is there now; a symbolic link itself, not where it leads.
    status_t SetTo(const char* path);
    status_t SetTo(const BEntry* entry);

    // Copies at most `length` bytes of the attribute's value from byte `offset` on and returns how
    // many; 0 behind the end or for an empty value. Any `type` reads any attribute.
    // B_ENTRY_NOT_FOUND if there is no such attribute, B_UNSUPPORTED if the disk keeps none,
    // B_NOT_ALLOWED for a node that can have none (a link, a FIFO).
    ssize_t ReadAttr(const char* name, type_code type, off_t offset, void* buffer,
                     size_t length) const;
    // Replaces the whole value and returns `length`; the old value stays if that fails. `type` is
    // not kept; `offset` must be 0 (B_BAD_VALUE). B_DEVICE_FULL also when the attributes of one
    // file are more than its disk can keep, which on common disks is about 4,000 bytes together.
    ssize_t WriteAttr(const char* name, type_code type, off_t offset, const void* buffer,
                      size_t length);
    status_t GetAttrInfo(const char* name, attr_info* info) const;

    // Copies the name of the next attribute, at most B_ATTR_NAME_LENGTH bytes with its NUL, in the
    // order of the names; B_ENTRY_NOT_FOUND when there are no more, and the next call starts over.
    status_t GetNextAttrName(char* name);

    // Waits until no other program holds the node by this function, and holds it until the object
    // goes. Nobody else is kept from anything. The node has to be readable.
    status_t Lock();

    // The permission bits, as chmod() takes them.
    status_t GetPermissions(mode_t* permissions) const;
    status_t SetPermissions(mode_t permissions);

    // Returns when the node's contents and attributes are on the disk. Of a directory: its entries.
    status_t Sync();

    BNode(const BNode&) = delete;
    BNode& operator=(const BNode&) = delete;

protected:
    status_t SetToDescriptor(host::Descriptor descriptor);
    status_t Fail(status_t status);

    host::Descriptor fDescriptor;

private:
    host::Descriptor fLock;
    std::optional<std::vector<std::string>> fAttributes; // that are still to be named

    friend status_t watch_entry(const BEntry& entry, uint32 flags, const BMessenger& target,
                                BNode* node, entry_ref* ref, node_ref* number);

    status_t fStatus = B_NO_INIT;
};

// The MIME type of a node, kept in the attribute "mime_type" that desktops share.
// The node stays the caller's and must outlive this object; same thread rule as the node.
class BNodeInfo {
public:
    explicit BNodeInfo(BNode* node);

    // B_NO_INIT without a node that is set; the others then fail with it.
    status_t InitCheck() const { return fNode ? B_OK : B_NO_INIT; }

    // Copies the type, at most B_MIME_TYPE_LENGTH bytes with its NUL, whether or not it is kept
    // with one. B_ENTRY_NOT_FOUND if the node has none, B_BAD_DATA if it is empty or too long.
    status_t GetType(char* type) const;
    // Keeps `type`; B_BAD_VALUE if it is empty or too long.
    status_t SetType(const char* type);

private:
    BNode* fNode = nullptr;
};

// A symbolic link. The same rules as for a node.
class BSymLink : public BNode {
public:
    using BNode::BNode;

    // Makes `path` the place that the link leads to, seen from the directory that it is in; nothing
    // need be there. B_BAD_VALUE if the node is no link.
    status_t MakeLinkedPath(const char* directoryPath, BPath* path) const;
};

#pragma once

#include "kits/storage/StorageDefs.h"

class BNode;

// The MIME type of a node, kept in the attribute "mime_type" that desktops share.
// The node stays the caller's and must outlive this object; same thread rule as the node.
class BNodeInfo {
public:
    BNodeInfo() = default;
    explicit BNodeInfo(BNode* node);

    status_t InitCheck() const { return fNode ? B_OK : B_NO_INIT; }

    // B_BAD_VALUE for no node or one that is not set.
    status_t SetTo(BNode* node);

    // Copies the type, at most B_MIME_TYPE_LENGTH bytes with its NUL, whether or not it is kept
    // with one. B_ENTRY_NOT_FOUND if the node has none, B_BAD_DATA if it is empty or too long.
    status_t GetType(char* type) const;
    // Keeps `type`; null removes it.
    status_t SetType(const char* type);

private:
    BNode* fNode = nullptr;
};

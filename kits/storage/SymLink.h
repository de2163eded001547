#pragma once

#include "kits/storage/Node.h"

class BPath;

// A symbolic link. The same rules as for a node.
class BSymLink : public BNode {
public:
    using BNode::BNode;

    // Makes `path` the place that the link leads to, seen from the directory that it is in; nothing
    // need be there. B_BAD_VALUE if the node is no link.
    status_t MakeLinkedPath(const char* directoryPath, BPath* path) const;
};

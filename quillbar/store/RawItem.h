#pragma once

#include "base/EntryRef.h"

// The store's record of a node: where its entry was found, and its number.
struct raw_item {
    entry_ref ref;
    int64 node = -1;

    node_ref Node() const { return {ref.device, node}; }
};

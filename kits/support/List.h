#pragma once

#include <vector>

#include "base/Types.h"

// An ordered list of pointers. It owns only the list, never what the items point to. An index
// outside the list changes nothing and gives null. One thread at a time.
class BList {
public:
    // Makes room for `count` items at once.
    explicit BList(int32 count = 20);

    // Adds the item at the end. Always true.
    bool AddItem(void* item);

    // Removes the item at `index` and returns it.
    void* RemoveItem(int32 index);

    void* ItemAt(int32 index) const;
    int32 CountItems() const { return static_cast<int32>(fItems.size()); }
    bool IsEmpty() const { return fItems.empty(); }

private:
    std::vector<void*> fItems;
};

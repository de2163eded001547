#pragma once

#include <vector>

#include "base/Types.h"

// An ordered list of pointers. It owns only the list, never what the items point to. An index
// outside the list does nothing and gives false or null. One thread at a time.
class BList {
public:
    // Makes room for `count` items at once.
    explicit BList(int32 count = 20);

    // Put `item` at the end, or before the item at `index` (the end is allowed).
    bool AddItem(void* item);
    bool AddItem(void* item, int32 index);

    // Take the first place of `item`, or the item at `index`, out.
    bool RemoveItem(void* item);
    void* RemoveItem(int32 index);
    void MakeEmpty() { fItems.clear(); }

    void* ItemAt(int32 index) const;
    void* FirstItem() const { return ItemAt(0); }
    void* LastItem() const { return ItemAt(CountItems() - 1); }

    // -1 if it is not there.
    int32 IndexOf(const void* item) const;
    bool HasItem(const void* item) const { return IndexOf(item) >= 0; }
    int32 CountItems() const { return static_cast<int32>(fItems.size()); }
    bool IsEmpty() const { return fItems.empty(); }

private:
    std::vector<void*> fItems;
};

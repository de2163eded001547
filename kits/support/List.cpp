#include "kits/support/List.h"

BList::BList(int32 count) {
    if (count > 0)
        fItems.reserve(count);
}

bool BList::AddItem(void* item) {
    fItems.push_back(item);
    return true;
}

void* BList::RemoveItem(int32 index) {
    void* item = ItemAt(index);
    if (index >= 0 && index < CountItems())
        fItems.erase(fItems.begin() + index);
    return item;
}

void* BList::ItemAt(int32 index) const {
    return index >= 0 && index < CountItems() ? fItems[index] : nullptr;
}

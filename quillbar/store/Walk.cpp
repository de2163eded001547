#include "quillbar/store/Walk.h"

#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"

status_t Walk(const BEntry& directory, Links links,
              const std::function<bool(BEntry& entry, const char* path)>& visit) {
    BDirectory opened(&directory);
    if (opened.InitCheck() != B_OK)
        return opened.InitCheck();

    BEntry entry;
    while (opened.GetNextEntry(&entry, links == Links::Followed) == B_OK) {
        BPath path;
        if (entry.InitCheck() != B_OK || entry.GetPath(&path) != B_OK || path.InitCheck() != B_OK)
            continue;
        if (!visit(entry, path.Path()))
            break;
    }
    return B_OK;
}

#include "kits/storage/SymLink.h"

#include "host/files/Files.h"
#include "host/files/Paths.h"
#include "kits/storage/Path.h"

status_t BSymLink::MakeLinkedPath(const char* directoryPath, BPath* path) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    std::string target;
    const status_t status = host::ReadLink(fDescriptor.Get(), target);
    if (status != B_OK)
        return status;
    if (target.starts_with('/'))
        return path->SetTo(host::PlatformPath(target).c_str());
    return path->SetTo(directoryPath, target.c_str());
}

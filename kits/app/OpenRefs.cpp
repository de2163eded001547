#include "kits/app/OpenRefs.h"

#include <vector>

#include "host/files/KnownPaths.h"
#include "host/files/Paths.h"
#include "kits/app/Message.h"
#include "kits/app/Roster.h"

status_t OpenRefs(const std::string& signature, const BMessage& message) {
    std::vector<std::string> paths;
    entry_ref ref;
    status_t status = message.FindRef("refs", &ref);
    while (status == B_OK) {
        std::string directory;
        status = host::KnownPaths::Shared().Find({ref.device, ref.directory}, directory);
        if (status != B_OK)
            return status;
        paths.push_back(host::Join(directory, ref.name));
        status = message.FindRef("refs", static_cast<int32>(paths.size()), &ref);
    }
    if (paths.empty())
        return status;
    std::vector<const char*> arguments;
    for (const std::string& path : paths)
        arguments.push_back(path.c_str());
    return be_roster->Launch(signature.c_str(), static_cast<int>(arguments.size()),
                             arguments.data());
}

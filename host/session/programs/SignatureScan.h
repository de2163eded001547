#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "host/session/programs/DesktopEntry.h"

namespace host {

// Finds the desktop entries that the user has given a signature (the key X-Be-Signature). Each call
// looks at all entry files, but reads only those that have changed since the last one. Any thread.
class SignatureScan {
public:
    // The first installed program with this signature; of several in one directory, the first by
    // name. An entry file hides those of the same id in the directories behind its own.
    std::optional<DesktopEntry> Find(const std::string& signature);

private:
    struct File {
        bool operator==(const File&) const = default;

        int64 node = 0;
        int64 size = 0;
        int64 changed = 0; // nanoseconds
    };
    struct Scanned {
        File file;
        bool hasSignature = false;
    };
    using ScannedFiles = std::map<std::string, Scanned>; // by path

    bool HasSignature(const std::string& path, ScannedFiles& scanned) const;

    std::mutex fLock;
    ScannedFiles fScanned; // at the last call
};

} // namespace host

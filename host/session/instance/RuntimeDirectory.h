#pragma once

#include <string>

#include "base/Types.h"
#include "host/loop/Descriptor.h"

namespace host {

// The directory in which the running programs of this user leave their locks and sockets:
// $XDG_RUNTIME_DIR/quillbar, or without that variable /tmp/quillbar-UID. One that belongs to
// somebody else, that others may enter or that is a link is not used.
class RuntimeDirectory {
public:
    // Makes the directory if it is missing and `create` says so. `InitCheck` says how it went.
    explicit RuntimeDirectory(bool create);

    status_t InitCheck() const { return fStatus; }
    const std::string& Path() const { return fPath; }
    int Get() const { return fDirectory.Get(); }

private:
    std::string fPath;
    Descriptor fDirectory;
    status_t fStatus;
};

// The file name that stands for a signature there, without an ending: every byte that is not
// a letter, a digit, '.' or '-' is escaped, and a long one is cut and made unique again by a hash.
std::string RuntimeFileName(const std::string& signature);

} // namespace host

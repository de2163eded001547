#pragma once

#include <sys/types.h>

#include <string>

#include "base/Types.h"

namespace host {

// What a symbolic link says, which need not lead anywhere. `link` is a descriptor of the link
// itself. B_BAD_VALUE if it is none.
status_t ReadLink(int link, std::string& target);

// Sets the permission bits of a node by any descriptor of it.
status_t SetPermissions(int node, mode_t mode);

} // namespace host

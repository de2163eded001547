#pragma once

#include <string>

#include "base/Types.h"

// Moves the file or link to the desktop's trash. `path` is the system's. A failure is reported on
// standard error.
status_t MoveToTrash(const std::string& path);

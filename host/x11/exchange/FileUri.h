#pragma once

#include <string>
#include <string_view>

#include "base/Errors.h"

namespace host {

// The path in a "file:" URI of this machine, which is called `machine`: absolute, and with a name
// behind its last slash. B_UNSUPPORTED for any other scheme or machine, B_BAD_VALUE for a malformed
// URI or one that names no file. `path` is changed only with B_OK.
status_t PathOfFileUri(std::string_view uri, const std::string& machine, std::string* path);

// `text` as a file name: no slashes or control characters, no dot first, at most 200 bytes. Empty
// if nothing is left.
std::string FileNameFor(std::string_view text);

} // namespace host

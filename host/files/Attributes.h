#pragma once

#include <string>
#include <vector>

#include "base/Types.h"

namespace host {

// The "user." extended attributes of the node of `descriptor`, which may be an O_PATH one. `name`
// is without the prefix. Any thread.
status_t ReadAttribute(int descriptor, const std::string& name, std::string& value);
status_t AttributeSize(int descriptor, const std::string& name, int64& size);
status_t WriteAttribute(int descriptor, const std::string& name, const std::string& value);
status_t ListAttributes(int descriptor, std::vector<std::string>& names);

// The attribute that desktops share for a file's MIME type.
extern const char* const kTypeAttribute;

// Whether the disk that `path` is on keeps attributes. Asks for one that is not there.
bool KeepsAttributes(const std::string& path);

} // namespace host

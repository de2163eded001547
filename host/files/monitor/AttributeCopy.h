#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/Types.h"

namespace host {

enum class AttributeCause : uint8 {
    Created,
    Removed,
    Changed,
};

struct AttributeChange {
    std::string name;
    AttributeCause cause;
};

// What a node's attributes were when they were last looked at. The system tells that something
// about a node changed, not what, and tells it of much else too.
class AttributeCopy {
public:
    // Looks at the attributes of the node that `descriptor` names, which last changed in any way at
    // `changed`, and returns what is different from the last time.
    std::vector<AttributeChange> Update(int descriptor, int64 changed);

private:
    // Size and hash.
    using Value = std::pair<size_t, size_t>;

    std::map<std::string, Value> fValues;
    // Set while there are more names than the system can list: any change may be one of them.
    int64 fUnlistedSince = 0;
};

} // namespace host

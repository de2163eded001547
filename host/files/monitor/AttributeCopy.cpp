#include "host/files/monitor/AttributeCopy.h"

#include <functional>

#include "host/files/Attributes.h"

namespace host {

std::vector<AttributeChange> AttributeCopy::Update(int descriptor, int64 changed) {
    std::vector<std::string> names;
    status_t status = ListAttributes(descriptor, names);
    if (status == B_BAD_DATA) {
        bool isNews = fUnlistedSince != changed;
        fUnlistedSince = changed;
        if (isNews)
            return {{"", AttributeCause::Changed}};
        return {};
    }
    std::vector<AttributeChange> changes;
    if (status != B_OK && status != B_UNSUPPORTED)
        return changes;

    std::map<std::string, Value> values;
    for (const std::string& name : names) {
        std::string value;
        if (ReadAttribute(descriptor, name, value) == B_OK)
            values[name] = {value.size(), std::hash<std::string>()(value)};
    }
    for (const auto& [name, value] : values) {
        auto old = fValues.find(name);
        if (old == fValues.end())
            changes.push_back({name, AttributeCause::Created});
        else if (old->second != value)
            changes.push_back({name, AttributeCause::Changed});
    }
    for (const auto& [name, value] : fValues) {
        if (!values.contains(name))
            changes.push_back({name, AttributeCause::Removed});
    }
    fValues = std::move(values);
    return changes;
}

} // namespace host

#include "host/session/programs/DesktopDirectories.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace host {

namespace {

void AddPlace(std::vector<std::string>& places, std::string_view place, const char* leaf) {
    if (place.starts_with('/'))
        places.push_back(std::string(place) + leaf);
}

std::vector<std::string> Places(const char* ownVariable, const char* ownDefault,
                                const char* variable, const char* otherwise, const char* leaf) {
    std::vector<std::string> places;
    const char* own = getenv(ownVariable);
    const char* home = getenv("HOME");
    if (own && own[0] == '/')
        AddPlace(places, own, leaf);
    else if (home)
        AddPlace(places, std::string(home) + ownDefault, leaf);

    const char* value = getenv(variable);
    std::string_view others = value && value[0] != '\0' ? value : otherwise;
    while (!others.empty()) {
        const std::string_view place = others.substr(0, others.find(':'));
        AddPlace(places, place, leaf);
        others.remove_prefix(std::min(others.size(), place.size() + 1));
    }
    return places;
}

bool IsFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool IsDirectory(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string FindEntryFileIn(const std::string& directory, const std::string& id) {
    const std::string path = directory + "/" + id;
    if (IsFile(path))
        return path;
    for (size_t dash = id.find('-'); dash != std::string::npos; dash = id.find('-', dash + 1)) {
        const std::string folder = directory + "/" + id.substr(0, dash);
        if (dash == 0 || !IsDirectory(folder))
            continue;
        const std::string found = FindEntryFileIn(folder, id.substr(dash + 1));
        if (!found.empty())
            return found;
    }
    return {};
}

} // namespace

std::vector<std::string> ConfigDirectories() {
    return Places("XDG_CONFIG_HOME", "/.config", "XDG_CONFIG_DIRS", "/etc/xdg", "");
}

std::vector<std::string> ApplicationDirectories() {
    return Places("XDG_DATA_HOME", "/.local/share", "XDG_DATA_DIRS", "/usr/local/share:/usr/share",
                  "/applications");
}

std::string FindEntryFile(const std::string& id) {
    if (!id.ends_with(".desktop") || id.find('/') != std::string::npos || id.size() > 255)
        return {};
    for (const std::string& directory : ApplicationDirectories()) {
        const std::string path = FindEntryFileIn(directory, id);
        if (!path.empty())
            return path;
    }
    return {};
}

} // namespace host

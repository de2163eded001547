#include "host/session/programs/Associations.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <set>
#include <string_view>

namespace host {

namespace {

// The part before `end`, or all; `text` keeps what is behind that.
std::string_view TakeUntil(std::string_view& text, char end) {
    const std::string_view part = text.substr(0, text.find(end));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    return part;
}

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
    while (!others.empty())
        AddPlace(places, TakeUntil(others, ':'), leaf);
    return places;
}

std::vector<std::string> ConfigDirectories() {
    return Places("XDG_CONFIG_HOME", "/.config", "XDG_CONFIG_DIRS", "/etc/xdg", "");
}

// A file of that type, or a link to one.
bool Is(mode_t type, const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && (status.st_mode & S_IFMT) == type;
}

std::string FindEntryFileIn(const std::string& directory, const std::string& id) {
    std::string path = directory + "/" + id;
    if (Is(S_IFREG, path))
        return path;
    for (size_t dash = id.find('-'); dash != std::string::npos; dash = id.find('-', dash + 1)) {
        const std::string folder = directory + "/" + id.substr(0, dash);
        if (dash == 0 || !Is(S_IFDIR, folder))
            continue;
        std::string found = FindEntryFileIn(folder, id.substr(dash + 1));
        if (!found.empty())
            return found;
    }
    return {};
}

} // namespace

std::vector<std::string> ApplicationDirectories() {
    return Places("XDG_DATA_HOME", "/.local/share", "XDG_DATA_DIRS", "/usr/local/share:/usr/share",
                  "/applications");
}

std::string FindEntryFile(const std::string& id) {
    if (!id.ends_with(".desktop") || id.find('/') != std::string::npos || id.size() > 255)
        return {};
    for (const std::string& directory : ApplicationDirectories()) {
        std::string path = FindEntryFileIn(directory, id);
        if (!path.empty())
            return path;
    }
    return {};
}

namespace {

constexpr std::string_view kSpace = " \t\r";

std::string_view Trim(std::string_view text) {
    const size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

std::vector<std::string> SplitList(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const std::string_view part = Trim(TakeUntil(list, ';'));
        if (!part.empty())
            parts.emplace_back(part);
    }
    return parts;
}

// The list under `key` in the group "[name]" of a file. Lines that make no sense are passed over:
// one broken line must not cost the user the others.
std::vector<std::string> ReadList(std::string_view content, std::string_view group,
                                  std::string_view key) {
    bool isInGroup = false;
    while (!content.empty()) {
        std::string_view line = Trim(TakeUntil(content, '\n'));
        if (line.starts_with('['))
            isInGroup = line == group;
        else if (isInGroup && line.starts_with(key) && Trim(TakeUntil(line, '=')) == key)
            return SplitList(line);
    }
    return {};
}

std::string ReadOrEmpty(const std::string& path) {
    return ReadDesktopFile(path).value_or(std::string());
}

// The names of the files with associations in a directory: those of the running desktops first.
std::vector<std::string> ListNames() {
    std::vector<std::string> names;
    const char* desktops = getenv("XDG_CURRENT_DESKTOP");
    std::string_view rest = desktops ? desktops : "";
    while (!rest.empty()) {
        std::string name(TakeUntil(rest, ':'));
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char letter) { return static_cast<char>(tolower(letter)); });
        if (!name.empty() && name.find('/') == std::string::npos)
            names.push_back(name + "-mimeapps.list");
    }
    names.push_back("mimeapps.list");
    return names;
}

struct AssociationFile {
    std::string content;
    std::string cache; // the associations that the directory's entries claim, behind its last list
};

// The most important file first.
std::vector<AssociationFile> ReadAssociations() {
    std::vector<AssociationFile> files;
    const std::vector<std::string> names = ListNames();
    const auto readLists = [&](const std::string& directory) {
        for (const std::string& name : names)
            files.push_back({ReadOrEmpty(directory + "/" + name), ""});
    };
    for (const std::string& directory : ConfigDirectories())
        readLists(directory);
    for (const std::string& directory : ApplicationDirectories()) {
        readLists(directory);
        files.back().cache = ReadOrEmpty(directory + "/mimeinfo.cache");
    }
    return files;
}

std::optional<DesktopEntry> FirstUsable(const std::vector<std::string>& ids,
                                        const std::set<std::string>& removed, Wanted wanted) {
    for (const std::string& id : ids) {
        if (removed.contains(id))
            continue;
        if (auto entry = DesktopEntry::Load(FindEntryFile(id), wanted))
            return entry;
    }
    return std::nullopt;
}

std::optional<DesktopEntry> FindDefault(const std::vector<AssociationFile>& files, const char* type,
                                        Wanted wanted) {
    for (const AssociationFile& file : files) {
        const auto chosen = ReadList(file.content, "[Default Applications]", type);
        if (auto entry = FirstUsable(chosen, {}, wanted))
            return entry;
    }
    std::set<std::string> removed;
    for (const AssociationFile& file : files) {
        const auto added = ReadList(file.content, "[Added Associations]", type);
        if (auto entry = FirstUsable(added, removed, wanted))
            return entry;
        for (const std::string& id : ReadList(file.content, "[Removed Associations]", type))
            removed.insert(id);
        const auto registered = ReadList(file.cache, "[MIME Cache]", type);
        if (auto entry = FirstUsable(registered, removed, wanted))
            return entry;
    }
    return std::nullopt;
}

} // namespace

std::optional<DesktopEntry> FindDefaultProgram(std::initializer_list<const char*> types,
                                               Wanted wanted) {
    const std::vector<AssociationFile> files = ReadAssociations();
    for (const char* type : types) {
        if (auto entry = FindDefault(files, type, wanted))
            return entry;
    }
    return std::nullopt;
}

} // namespace host

#include "host/session/programs/Associations.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <set>
#include <string_view>

#include "host/session/programs/DesktopDirectories.h"

namespace host {

namespace {

constexpr std::string_view kSpace = " \t\r";

std::string_view TakeUntil(std::string_view& text, char end) {
    const std::string_view part = text.substr(0, text.find(end));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    return part;
}

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

// What the files of associations say, the most important first. Read on the spot.
struct AssociationFile {
    std::string content;
    std::string cache; // what the entries of the directory say of themselves, behind its last list
};

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
                                        const std::set<std::string>& removed) {
    for (const std::string& id : ids) {
        if (removed.contains(id))
            continue;
        if (auto entry = DesktopEntry::Load(FindEntryFile(id)))
            return entry;
    }
    return std::nullopt;
}

} // namespace

std::optional<DesktopEntry> FindDefaultProgram(const std::string& type) {
    const std::vector<AssociationFile> files = ReadAssociations();
    for (const AssociationFile& file : files) {
        if (auto entry = FirstUsable(ReadList(file.content, "[Default Applications]", type), {}))
            return entry;
    }
    std::set<std::string> removed;
    for (const AssociationFile& file : files) {
        if (auto entry = FirstUsable(ReadList(file.content, "[Added Associations]", type), removed))
            return entry;
        for (const std::string& id : ReadList(file.content, "[Removed Associations]", type))
            removed.insert(id);
        if (auto entry = FirstUsable(ReadList(file.cache, "[MIME Cache]", type), removed))
            return entry;
    }
    return std::nullopt;
}

} // namespace host

#include "host/files/Paths.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <vector>

namespace host {

namespace {

const std::string kPlatformHome = "/boot/home";
const std::string kPlatformSettings = "/boot/home/config/settings";

std::string AccountHome() {
    std::vector<char> buffer(16384);
    passwd account;
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found) != 0 || !found)
        return "/";
    return found->pw_dir[0] == '/' ? PlainPath(found->pw_dir) : "/";
}

// The directories that the environment names, kept until it changes: every path that is used asks
// for them.
struct Directories {
    std::string homeVariable;
    std::string settingsVariable;
    std::string home;
    std::string settings;
};

const Directories& CurrentDirectories() {
    // The desktop's base directory convention ignores a relative value.
    auto valueOf = [](const char* variable) {
        const char* value = getenv(variable);
        return std::string_view(value && value[0] == '/' ? value : "");
    };
    thread_local Directories kept;
    std::string_view home = valueOf("HOME");
    std::string_view settings = valueOf("XDG_CONFIG_HOME");
    if (kept.home.empty() || kept.homeVariable != home || kept.settingsVariable != settings) {
        kept.homeVariable = home;
        kept.settingsVariable = settings;
        kept.home = home.empty() ? AccountHome() : PlainPath(kept.homeVariable);
        kept.settings =
            settings.empty() ? Join(kept.home, ".config") : PlainPath(kept.settingsVariable);
    }
    return kept;
}

// Puts `to` in the place of the leading directory `from`; false if `path` is not in it.
bool Replace(std::string& path, const std::string& from, const std::string& to) {
    size_t length = from == "/" ? 0 : from.size();
    bool isBelow = path.size() > length && path[length] == '/' &&
                   path.compare(0, length, from, 0, length) == 0;
    if (path != from && !isBelow)
        return false;
    std::string rest = path == from ? "" : path.substr(length);
    path = to == "/" && !rest.empty() ? rest : to + rest;
    return true;
}

} // namespace

std::string HostPath(const std::string& platformPath) {
    std::string path = platformPath;
    if (!Replace(path, kPlatformSettings, CurrentDirectories().settings))
        Replace(path, kPlatformHome, CurrentDirectories().home);
    return path;
}

std::string PlatformPath(const std::string& hostPath) {
    std::string settings = hostPath;
    // A real ~/config/settings would read as the directory of settings: it keeps its own path.
    if (Replace(settings, CurrentDirectories().settings, kPlatformSettings) &&
        HostPath(settings) == hostPath)
        return settings;
    std::string home = hostPath;
    if (Replace(home, CurrentDirectories().home, kPlatformHome) && HostPath(home) == hostPath)
        return home;
    return hostPath;
}

std::string PlainPath(const std::string& path) {
    std::string plain;
    for (size_t start = 0; start < path.size();) {
        size_t end = std::min(path.find('/', start), path.size());
        std::string_view part = std::string_view(path).substr(start, end - start);
        if (!part.empty() && part != ".")
            (plain += '/') += part;
        start = end + 1;
    }
    return plain.empty() ? "/" : plain;
}

bool HasParentComponent(const std::string& path) {
    return (path + "/").find("/../") != std::string::npos;
}

std::string ParentPath(const std::string& path) {
    if (path == "/")
        return "";
    size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string LeafOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string Join(const std::string& directory, const std::string& leaf) {
    return directory == "/" ? "/" + leaf : directory + "/" + leaf;
}

} // namespace host

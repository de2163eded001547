#include "host/files/Paths.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace host {

namespace {

const std::string kPlatformHome = "/boot/home";
const std::string kPlatformSettings = "/boot/home/config/settings";

std::string AccountHome() {
    std::vector<char> buffer(16 * 1024);
    passwd account;
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found) != 0 || !found)
        return "/";
    return found->pw_dir[0] == '/' ? PlainPath(found->pw_dir) : "/";
}

std::string HostHome() {
    const char* home = getenv("HOME");
    return home && home[0] == '/' ? PlainPath(home) : AccountHome();
}

std::string HostSettings() {
    // A relative value is to be ignored, says the desktop's base directory convention.
    const char* settings = getenv("XDG_CONFIG_HOME");
    return settings && settings[0] == '/' ? PlainPath(settings) : Join(HostHome(), ".config");
}

// Puts `to` in the place of the leading directory `from`; false if `path` is not in it.
bool Replace(std::string& path, const std::string& from, const std::string& to) {
    std::string prefix = from == "/" ? "" : from;
    if (path != from && path.compare(0, prefix.size() + 1, prefix + "/") != 0)
        return false;
    std::string rest = path == from ? "" : path.substr(prefix.size());
    path = to == "/" && !rest.empty() ? rest : to + rest;
    return true;
}

} // namespace

std::string HostPath(const std::string& platformPath) {
    std::string path = platformPath;
    if (!Replace(path, kPlatformSettings, HostSettings()))
        Replace(path, kPlatformHome, HostHome());
    return path;
}

std::string PlatformPath(const std::string& hostPath) {
    std::string settings = hostPath;
    // A real ~/config/settings would read as the directory of settings: it keeps its own path.
    if (Replace(settings, HostSettings(), kPlatformSettings) && HostPath(settings) == hostPath)
        return settings;
    std::string home = hostPath;
    if (Replace(home, HostHome(), kPlatformHome) && HostPath(home) == hostPath)
        return home;
    return hostPath;
}

std::string PlainPath(const std::string& path) {
    std::string plain;
    for (size_t start = 0; start < path.size();) {
        size_t end = std::min(path.find('/', start), path.size());
        std::string part = path.substr(start, end - start);
        if (!part.empty() && part != ".")
            plain += "/" + part;
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

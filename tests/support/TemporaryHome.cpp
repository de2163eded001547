#include "tests/support/TemporaryHome.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/xattr.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace test {

namespace {

// Not every place for temporary files keeps user attributes (an older kernel's tmpfs does not).
fs::path MakeFolderWithAttributes() {
    for (const fs::path& parent :
         {fs::temp_directory_path(), fs::path("/var/tmp"), fs::current_path()}) {
        std::string folder = (parent / "home-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr)
            continue;
        if (setxattr(folder.c_str(), "user.probe", "", 0, 0) == 0)
            return folder;
        fs::remove(folder);
    }
    throw std::runtime_error("no folder for temporary files keeps user attributes");
}

// Tests take permissions away; they are given back so that everything can be removed.
void RemoveAll(const fs::path& folder) {
    std::error_code ignored;
    for (auto it = fs::recursive_directory_iterator(
             folder, fs::directory_options::skip_permission_denied, ignored);
         it != fs::recursive_directory_iterator(); it.increment(ignored))
        if (it->is_directory(ignored) && !it->is_symlink(ignored))
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(folder, ignored);
}

} // namespace

TemporaryHome::TemporaryHome()
    : fPath(MakeFolderWithAttributes()) {
    SetFolder("HOME", fPath);
    SetFolder("XDG_CONFIG_HOME", Config());
    SetFolder("XDG_CONFIG_DIRS", fPath / "etc");
    SetFolder("XDG_DATA_HOME", Data());
    SetFolder("XDG_DATA_DIRS", fPath / "share");
    SetFolder("XDG_RUNTIME_DIR", Runtime());
    SetFolder("XDG_CACHE_HOME", fPath / ".cache");
    SetFolder("XDG_STATE_HOME", fPath / ".local/state");
    // A session bus would be started for this home, and outlive it.
    Set("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    fs::permissions(Runtime(), fs::perms::owner_all);
}

TemporaryHome::~TemporaryHome() {
    for (const auto& [variable, value] : fOld) {
        if (value)
            setenv(variable.c_str(), value->c_str(), 1);
        else
            unsetenv(variable.c_str());
    }
    RemoveAll(fPath);
}

void TemporaryHome::SetFolder(const std::string& variable, const fs::path& folder) {
    fs::create_directories(folder);
    Set(variable, folder);
}

void TemporaryHome::Set(const std::string& variable, const std::string& value) {
    const char* old = getenv(variable.c_str());
    fOld[variable] = old != nullptr ? std::optional<std::string>(old) : std::nullopt;
    setenv(variable.c_str(), value.c_str(), 1);
}

} // namespace test

#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace test {

// A fresh home folder on a disk that keeps user attributes: HOME and the XDG variables of this
// process name places in it until the object goes, which also removes it. It hides the machine's
// desktop entries, settings and session bus.
class TemporaryHome {
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    const std::filesystem::path& Path() const { return fPath; }
    std::filesystem::path Config() const { return fPath / ".config"; }    // XDG_CONFIG_HOME
    std::filesystem::path Data() const { return fPath / ".local/share"; } // XDG_DATA_HOME
    std::filesystem::path Runtime() const { return fPath / "run"; }       // XDG_RUNTIME_DIR

private:
    void SetFolder(const std::string& variable, const std::filesystem::path& folder);
    void Set(const std::string& variable, const std::string& value);

    std::filesystem::path fPath;
    std::map<std::string, std::optional<std::string>> fOld;
};

} // namespace test

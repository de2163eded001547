#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TemporaryHome.h"

namespace test {

// Installs desktop entries in a temporary home whose commands write down how they were started.
class RecordedApps {
public:
    struct Launch {
        std::string app; // the desktop entry's name without ".desktop"
        std::vector<std::string> arguments;
        bool operator==(const Launch&) const = default;
    };

    explicit RecordedApps(const TemporaryHome& home);

    // Installs NAME.desktop. `field` is the field code after the command ("" for none), `keys` are
    // whole further lines of the entry.
    void Install(const std::string& name, const std::string& field = "%u",
                 const std::vector<std::string>& keys = {});
    void Uninstall(const std::string& name);
    // Makes an installed entry the default for a MIME type or an x-scheme-handler.
    void SetDefault(const std::string& type, const std::string& name);

    // "browser" as the default for http, https and text/html.
    void InstallBrowser();
    // "opera".
    void InstallOpera();
    // "files" as the default for directories.
    void InstallFileManager();

    // What was started so far, in order.
    std::vector<Launch> Launches() const;
    // Waits until at least `count` were started; fewer are returned at the deadline.
    std::vector<Launch> WaitForLaunches(size_t count) const;

private:
    std::filesystem::path fApplications;
    std::filesystem::path fConfig;
    std::filesystem::path fRecords;
    std::vector<std::string> fDefaults;
};

} // namespace test

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

    // Installs NAME.desktop as the default for these MIME types and x-scheme-handlers. It starts
    // `command` instead of the recorder unless that is empty.
    void Install(const std::string& name, const std::vector<std::string>& types = {},
                 const std::string& command = "");
    void Uninstall(const std::string& name);
    // "browser" as the default for http, https and text/html.
    void InstallBrowser();

    // What was started so far, in order.
    std::vector<Launch> Launches() const;
    // Waits until at least `count` were started; fewer are returned at the deadline.
    std::vector<Launch> WaitForLaunches(size_t count) const;

private:
    std::filesystem::path fApplications;
    std::filesystem::path fDefaults;
    std::filesystem::path fRecords;
};

} // namespace test

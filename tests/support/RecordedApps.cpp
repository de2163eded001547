#include "tests/support/RecordedApps.h"

#include <algorithm>
#include <fstream>

#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace test {

namespace {

// The record takes its name when it is whole.
constexpr char kRecorder[] = R"(cd "$1"
shift
printf '%s\0' "$@" >"writing.$$"
mv "writing.$$" "launch.$$"
)";

RecordedApps::Launch Read(const fs::path& record) {
    std::ifstream file(record, std::ios::binary);
    RecordedApps::Launch launch;
    std::getline(file, launch.app, '\0');
    for (std::string argument; std::getline(file, argument, '\0');)
        launch.arguments.push_back(argument);
    return launch;
}

} // namespace

RecordedApps::RecordedApps(const TemporaryHome& home)
    : fApplications(home.Data() / "applications")
    , fDefaults(home.Config() / "mimeapps.list")
    , fRecords(home.Path() / "launches") {
    fs::create_directories(fApplications);
    fs::create_directories(fRecords);
    std::ofstream(fRecords / "recorder") << kRecorder;
    std::ofstream(fDefaults) << "[Default Applications]\n";
}

void RecordedApps::Install(const std::string& name, const std::vector<std::string>& types,
                           const std::string& command) {
    const std::string recorder = "/bin/sh " + (fRecords / "recorder").string() + " " +
                                 fRecords.string() + " " + name + " %u";
    std::ofstream(fApplications / (name + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=" << name
        << "\nExec=" << (command.empty() ? recorder : command) << "\n";
    for (const std::string& type : types)
        std::ofstream(fDefaults, std::ios::app) << type << "=" << name << ".desktop\n";
}

void RecordedApps::Uninstall(const std::string& name) {
    fs::remove(fApplications / (name + ".desktop"));
}

void RecordedApps::InstallBrowser() {
    Install("browser", {"x-scheme-handler/http", "x-scheme-handler/https", "text/html"});
}

std::vector<RecordedApps::Launch> RecordedApps::Launches() const {
    std::vector<fs::path> records;
    for (const fs::directory_entry& entry : fs::directory_iterator(fRecords))
        if (entry.path().stem() == "launch")
            records.push_back(entry.path());
    std::sort(records.begin(), records.end(), [](const fs::path& a, const fs::path& b) {
        return fs::last_write_time(a) < fs::last_write_time(b);
    });
    std::vector<Launch> launches;
    std::transform(records.begin(), records.end(), std::back_inserter(launches), Read);
    return launches;
}

std::vector<RecordedApps::Launch> RecordedApps::WaitForLaunches(size_t count) const {
    WaitUntil([&] { return Launches().size() >= count; });
    return Launches();
}

} // namespace test

#include "tests/support/RecordedApps.h"

#include <algorithm>
#include <fstream>
#include <sys/stat.h>

#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace test {

namespace {

// The record takes its name when it is whole.
constexpr char kRecorder[] = R"(folder=$1
shift
printf '%s\0' "$@" >"$folder/writing.$$"
mv "$folder/writing.$$" "$folder/launch.$$"
)";

RecordedApps::Launch Read(const fs::path& record) {
    std::ifstream file(record, std::ios::binary);
    RecordedApps::Launch launch;
    std::getline(file, launch.app, '\0');
    for (std::string argument; std::getline(file, argument, '\0');)
        launch.arguments.push_back(argument);
    return launch;
}

int64_t TimeOf(const fs::path& record) {
    struct stat data = {};
    stat(record.c_str(), &data);
    return data.st_mtim.tv_sec * 1'000'000'000LL + data.st_mtim.tv_nsec;
}

} // namespace

RecordedApps::RecordedApps(const TemporaryHome& home)
    : fApplications(home.Data() / "applications")
    , fConfig(home.Config())
    , fRecords(home.Path() / "launches") {
    fs::create_directories(fApplications);
    fs::create_directories(fRecords);
    std::ofstream(home.Path() / "recorder") << kRecorder;
}

void RecordedApps::Install(const std::string& name, const std::string& field,
                           const std::vector<std::string>& keys) {
    std::ofstream entry(fApplications / (name + ".desktop"));
    entry << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=/bin/sh "
          << (fRecords.parent_path() / "recorder").string() << " " << fRecords.string() << " "
          << name << " " << field << "\n";
    for (const std::string& key : keys)
        entry << key << "\n";
}

void RecordedApps::Uninstall(const std::string& name) {
    fs::remove(fApplications / (name + ".desktop"));
}

void RecordedApps::SetDefault(const std::string& type, const std::string& name) {
    fDefaults.push_back(type + "=" + name + ".desktop");
    std::ofstream list(fConfig / "mimeapps.list");
    list << "[Default Applications]\n";
    for (const std::string& line : fDefaults)
        list << line << "\n";
}

void RecordedApps::InstallBrowser() {
    Install("browser", "%u", {"MimeType=x-scheme-handler/http;x-scheme-handler/https;text/html;"});
    for (const char* type : {"x-scheme-handler/http", "x-scheme-handler/https", "text/html"})
        SetDefault(type, "browser");
}

void RecordedApps::InstallOpera() {
    Install("opera");
}

void RecordedApps::InstallFileManager() {
    Install("files", "%U", {"MimeType=inode/directory;"});
    SetDefault("inode/directory", "files");
}

std::vector<RecordedApps::Launch> RecordedApps::Launches() const {
    std::vector<fs::path> records;
    for (const fs::directory_entry& entry : fs::directory_iterator(fRecords))
        if (entry.path().stem() == "launch")
            records.push_back(entry.path());
    std::sort(records.begin(), records.end(),
              [](const fs::path& a, const fs::path& b) { return TimeOf(a) < TimeOf(b); });
    std::vector<Launch> launches;
    for (const fs::path& record : records)
        launches.push_back(Read(record));
    return launches;
}

std::vector<RecordedApps::Launch> RecordedApps::WaitForLaunches(size_t count) const {
    WaitUntil([&] { return Launches().size() >= count; });
    return Launches();
}

} // namespace test

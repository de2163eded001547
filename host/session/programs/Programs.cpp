#include "host/session/programs/Programs.h"

#include "host/session/programs/Associations.h"
#include "host/session/programs/DesktopDirectories.h"
#include "host/session/programs/SignatureScan.h"

namespace host {

namespace {

// The names under which the browser Opera is packaged.
constexpr const char* kOperaEntries[] = {
    "opera.desktop",           "com.opera.Opera.desktop", "com.opera.opera.desktop",
    "opera_opera.desktop",     "opera-stable.desktop",    "opera-beta.desktop",
    "opera-developer.desktop",
};

std::optional<DesktopEntry> FindOpera() {
    for (const char* id : kOperaEntries) {
        if (auto entry = DesktopEntry::Load(FindEntryFile(id)))
            return entry;
    }
    return std::nullopt;
}

std::optional<DesktopEntry> FindBrowser() {
    if (auto entry = FindDefaultProgram("x-scheme-handler/https"))
        return entry;
    return FindDefaultProgram("x-scheme-handler/http");
}

struct Role {
    const char* signature;
    std::optional<DesktopEntry> (*find)();
};

constexpr Role kRoles[] = {
    {"application/x-vnd.operasoftware-opera", FindOpera},
    {"application/x-vnd.Be-NPOS", FindBrowser},
    {"application/x-vnd.Be-TRAK", [] { return FindDefaultProgram("inode/directory"); }},
    {"text/html", FindBrowser},
    {"text/x-email", [] { return FindDefaultProgram("x-scheme-handler/mailto"); }},
    {"application/x-vnd.Be.URL.ftp", [] { return FindDefaultProgram("x-scheme-handler/ftp"); }},
};

std::optional<DesktopEntry> FindChosen(const std::string& signature) {
    static SignatureScan& scan = *new SignatureScan; // other threads may outlive main()
    return scan.Find(signature);
}

std::optional<DesktopEntry> FindOfDesktop(const std::string& signature) {
    for (const Role& role : kRoles) {
        if (signature == role.signature)
            return role.find();
    }
    return std::nullopt;
}

} // namespace

std::optional<DesktopEntry> FindProgramFor(const std::string& signature) {
    if (auto entry = FindChosen(signature))
        return entry;
    return FindOfDesktop(signature);
}

bool HasProgramFor(const std::string& signature) {
    return FindOfDesktop(signature) || FindChosen(signature);
}

} // namespace host

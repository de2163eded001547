#include "host/session/programs/Programs.h"

#include <dirent.h>
#include <sys/stat.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <mutex>
#include <set>

#include "host/session/programs/Associations.h"

namespace host {

namespace {

constexpr const char* kSignatureKey = "X-Be-Signature";

// Bounds of the search: folders may be links to each other.
constexpr int kDeepest = 4;
constexpr int kMostFiles = 20'000;

// The names under which the browser Opera is packaged.
constexpr const char* kOperaEntries[] = {
    "opera.desktop",           "com.opera.Opera.desktop", "com.opera.opera.desktop",
    "opera_opera.desktop",     "opera-stable.desktop",    "opera-beta.desktop",
    "opera-developer.desktop",
};

std::optional<DesktopEntry> FindOpera(Wanted wanted) {
    for (const char* id : kOperaEntries) {
        if (auto entry = DesktopEntry::Load(FindEntryFile(id), wanted))
            return entry;
    }
    return std::nullopt;
}

struct Role {
    const char* signature;
    std::initializer_list<const char*> types; // the desktop's choice for the first that has one
};

const Role kRoles[] = {
    {"application/x-vnd.Be-NPOS", {"x-scheme-handler/https", "x-scheme-handler/http"}},
    {"application/x-vnd.Be-TRAK", {"inode/directory"}},
    {"text/html", {"x-scheme-handler/https", "x-scheme-handler/http"}},
    {"text/x-email", {"x-scheme-handler/mailto"}},
    {"application/x-vnd.Be.URL.ftp", {"x-scheme-handler/ftp"}},
};

std::optional<DesktopEntry> FindOfDesktop(const std::string& signature, Wanted wanted) {
    if (signature == "application/x-vnd.operasoftware-opera")
        return FindOpera(wanted);
    for (const Role& role : kRoles) {
        if (signature == role.signature)
            return FindDefaultProgram(role.types, wanted);
    }
    return std::nullopt;
}

using EntryFiles = std::map<std::string, std::string>; // id, path

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

// Collects the entry files below a directory; `left` is how many files it may still look at.
void CollectEntryFiles(const std::string& directory, const std::string& idPrefix, int depth,
                       int& left, EntryFiles& files) {
    const std::unique_ptr<DIR, DirectoryCloser> stream(opendir(directory.c_str()));
    while (const dirent* item = stream ? readdir(stream.get()) : nullptr) {
        const std::string name = item->d_name;
        if (name[0] == '.' || left-- <= 0)
            continue;
        const std::string path = directory + "/" + name;
        if (name.ends_with(".desktop"))
            files.emplace(idPrefix + name, path);
        else if (depth < kDeepest && item->d_type != DT_REG)
            CollectEntryFiles(path, idPrefix + name + "-", depth + 1, left, files);
    }
}

// Finds the desktop entries that the user has given a signature. Each call looks at all entry
// files, but reads only those that have changed since the last one. Any thread.
class SignatureScan {
public:
    // The first program with this signature; of several in one directory, the first by name. An
    // entry file hides those of the same id in the directories behind its own.
    std::optional<DesktopEntry> Find(const std::string& signature, Wanted wanted);

private:
    struct File {
        bool operator==(const File&) const = default;

        int64 node = 0;
        int64 size = 0;
        int64 changed = 0; // nanoseconds
    };
    struct Scanned {
        File file;
        bool hasSignature = false;
    };
    using ScannedFiles = std::map<std::string, Scanned>; // by path

    bool HasSignature(const std::string& path, ScannedFiles& scanned) const;

    std::mutex fLock;
    ScannedFiles fScanned; // at the last call
};

std::optional<DesktopEntry> SignatureScan::Find(const std::string& signature, Wanted wanted) {
    const std::lock_guard guard(fLock);
    ScannedFiles scanned;
    std::optional<DesktopEntry> found;
    std::set<std::string> seen;
    int left = kMostFiles;
    for (const std::string& directory : ApplicationDirectories()) {
        EntryFiles files;
        CollectEntryFiles(directory, "", 0, left, files);
        for (const auto& [id, path] : files) {
            if (!seen.insert(id).second || !HasSignature(path, scanned) || found)
                continue;
            found = DesktopEntry::Load(path, wanted);
            if (found && found->Signature() != signature)
                found.reset();
        }
    }
    fScanned = std::move(scanned);
    return found;
}

// Whether the bytes of the file hold the key.
bool SignatureScan::HasSignature(const std::string& path, ScannedFiles& scanned) const {
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    const File file{static_cast<int64>(status.st_ino), status.st_size,
                    status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec};
    const auto known = fScanned.find(path);
    Scanned result{file, false};
    if (known != fScanned.end() && known->second.file == file)
        result = known->second;
    else if (const auto content = ReadDesktopFile(path))
        result.hasSignature = content->find(kSignatureKey) != std::string::npos;
    return scanned.emplace(path, result).first->second.hasSignature;
}

std::optional<DesktopEntry> FindChosen(const std::string& signature, Wanted wanted) {
    static SignatureScan& scan = *new SignatureScan; // other threads may outlive main()
    return scan.Find(signature, wanted);
}

} // namespace

std::optional<DesktopEntry> FindProgramFor(const std::string& signature, Wanted wanted) {
    if (auto entry = FindChosen(signature, wanted))
        return entry;
    return FindOfDesktop(signature, wanted);
}

bool HasProgramFor(const std::string& signature) {
    return FindOfDesktop(signature, Wanted::Installed) || FindChosen(signature, Wanted::Installed);
}

} // namespace host

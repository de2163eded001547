#include "host/session/programs/SignatureScan.h"

#include <dirent.h>
#include <sys/stat.h>

#include <memory>
#include <set>

#include "host/session/programs/DesktopDirectories.h"

namespace host {

namespace {

constexpr const char* kKey = "X-Be-Signature";

// Bounds of what is looked at: folders may be links to each other.
constexpr int kDeepest = 4;
constexpr int kMostFiles = 20'000;

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

} // namespace

std::optional<DesktopEntry> SignatureScan::Find(const std::string& signature) {
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
            found = DesktopEntry::Load(path);
            if (found && found->Signature() != signature)
                found.reset();
        }
    }
    fScanned = std::move(scanned);
    return found;
}

// Whether the file may have the key, as far as a look at its bytes tells.
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
        result.hasSignature = content->find(kKey) != std::string::npos;
    return scanned.emplace(path, result).first->second.hasSignature;
}

} // namespace host

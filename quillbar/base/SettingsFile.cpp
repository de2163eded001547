#include "quillbar/base/SettingsFile.h"

#include <cstdio>

#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "kits/support/String.h"

namespace {

constexpr off_t kLongest = 1 << 20;
constexpr int kMostLinks = 40;

// The place that the path stands for: where its symbolic links lead, even if nothing is there.
status_t FollowLinks(const char* path, BPath& place) {
    status_t status = place.SetTo(path);
    for (int i = 0; status == B_OK && BEntry(place.Path()).IsSymLink(); ++i) {
        if (i == kMostLinks)
            return B_LINK_LIMIT;
        BSymLink link(place.Path());
        BPath directory;
        status = place.GetParent(&directory);
        if (status == B_OK)
            status = link.MakeLinkedPath(directory.Path(), &place);
    }
    return status;
}

// One that the user has protected stays as it is.
bool MayReplace(const BPath& place) {
    return !BEntry(place.Path()).Exists() || BFile(place.Path(), B_READ_WRITE).InitCheck() == B_OK;
}

status_t WriteNeighbour(const BDirectory& directory, const char* name, const std::string& text,
                        const BPath& place) {
    BFile file(&directory, name, B_READ_WRITE | B_CREATE_FILE | B_ERASE_FILE);
    if (file.InitCheck() != B_OK)
        return file.InitCheck();
    mode_t mode = 0;
    if (BNode(place.Path()).GetPermissions(&mode) == B_OK)
        file.SetPermissions(mode);
    const ssize_t written = file.Write(text.data(), text.size());
    if (written < 0)
        return static_cast<status_t>(written);
    return static_cast<size_t>(written) == text.size() ? file.Sync() : B_DEVICE_FULL;
}

} // namespace

bool SettingsFile::Exists(const char* path) {
    return BEntry(path).Exists();
}

status_t SettingsFile::Read(const char* path, std::string& text) {
    BFile file(path, B_READ_ONLY);
    if (file.InitCheck() != B_OK)
        return file.InitCheck();
    off_t size = 0;
    const status_t status = file.GetSize(&size);
    if (status != B_OK)
        return status;
    if (size > kLongest)
        return B_BAD_DATA;
    text.resize(static_cast<size_t>(size));
    const ssize_t read = file.Read(text.data(), text.size());
    if (read < 0)
        return static_cast<status_t>(read);
    text.resize(static_cast<size_t>(read));
    return B_OK;
}

status_t SettingsFile::Write(const char* path, const std::string& text) {
    BPath place;
    BPath parent;
    status_t status = FollowLinks(path, place);
    if (status == B_OK)
        status = place.GetParent(&parent);
    if (status != B_OK)
        return status;
    if (!MayReplace(place))
        return B_NOT_ALLOWED;
    BDirectory directory(parent.Path());
    if (directory.InitCheck() != B_OK)
        return directory.InitCheck();

    const BString name = BString(place.Leaf()) + ".new";
    BEntry neighbour(&directory, name.String());
    neighbour.Remove(); // what a save that was killed has left
    status = WriteNeighbour(directory, name.String(), text, place);
    if (status == B_OK)
        status = neighbour.Rename(place.Leaf(), true);
    if (status != B_OK)
        neighbour.Remove();
    return status;
}

void SettingsFile::PutAside(const char* path) {
    BPath place;
    if (FollowLinks(path, place) != B_OK)
        return;
    const BString name = BString(place.Leaf()) + ".bad";
    if (BEntry(place.Path()).Rename(name.String(), true) == B_OK)
        std::fprintf(stderr, "quillbar: the settings cannot be understood; kept as %s\n",
                     name.String());
}

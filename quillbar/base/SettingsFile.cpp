#include "quillbar/base/SettingsFile.h"

#include <cstdio>

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

// The directory or the file system lets nobody make a file there or rename it, or something is
// mounted on the file: the file itself may be writable.
bool IsRefusal(status_t status) {
    return status == B_PERMISSION_DENIED || status == B_NOT_ALLOWED ||
           status == B_READ_ONLY_DEVICE || status == B_BUSY || status == B_CROSS_DEVICE_LINK;
}

status_t WriteText(BFile& file, const std::string& text) {
    const ssize_t written = file.Write(text.data(), text.size());
    if (written < 0)
        return static_cast<status_t>(written);
    return static_cast<size_t>(written) == text.size() ? file.Sync() : B_DEVICE_FULL;
}

// The file beside the settings file that takes its name.
class Neighbour {
public:
    explicit Neighbour(const BPath& place)
        : fPlace(place)
        , fPath((BString(place.Path()) + ".new").String()) {
        BEntry(fPath.Path()).Remove(); // a save that was killed has left it
        fStatus = fFile.SetTo(fPath.Path(), B_READ_WRITE | B_CREATE_FILE | B_ERASE_FILE);
    }
    ~Neighbour() { BEntry(fPath.Path()).Remove(); }

    status_t InitCheck() const { return fStatus; }

    status_t Replace(const std::string& text) {
        if (fStatus != B_OK)
            return fStatus;
        mode_t mode = 0;
        if (BNode(fPlace.Path()).GetPermissions(&mode) == B_OK)
            fFile.SetPermissions(mode);
        const status_t status = WriteText(fFile, text);
        return status == B_OK ? BEntry(fPath.Path()).Rename(fPlace.Leaf(), true) : status;
    }

private:
    const BPath& fPlace;
    const BPath fPath;
    BFile fFile;
    status_t fStatus;
};

status_t WriteInPlace(const BPath& place, const std::string& text) {
    BFile file(place.Path(), B_READ_WRITE | B_CREATE_FILE | B_ERASE_FILE);
    return file.InitCheck() == B_OK ? WriteText(file, text) : file.InitCheck();
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
    const status_t found = FollowLinks(path, place);
    if (found != B_OK)
        return found;
    if (!MayReplace(place))
        return B_NOT_ALLOWED;
    const status_t status = Neighbour(place).Replace(text);
    return IsRefusal(status) ? WriteInPlace(place, text) : status;
}

status_t SettingsFile::CanWrite(const char* path) {
    BPath place;
    const status_t found = FollowLinks(path, place);
    if (found != B_OK)
        return found;
    if (BEntry(place.Path()).Exists())
        return BFile(place.Path(), B_READ_WRITE).InitCheck();
    return Neighbour(place).InitCheck();
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

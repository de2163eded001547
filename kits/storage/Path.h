#pragma once

#include <string>

#include "base/Types.h"

class BEntry;

// An absolute path, as text: it need not lead anywhere. Runs of slashes and "." are taken out; ".."
// is resolved on the disk, because its meaning depends on links. Never ends with a slash, except
// for "/". A value; any thread may use its own.
//
// Paths are the platform's: "/boot/home" is the home directory, "/boot/home/config/settings" the
// directory of settings, wherever the system keeps them. Every other path stands as it is.
class BPath {
public:
    BPath() = default;
    explicit BPath(const char* path, const char* leaf = nullptr);
    explicit BPath(const BEntry* entry);

    // B_OK when a path is set, B_NO_INIT when none is, or the failure of the last SetTo.
    status_t InitCheck() const { return fStatus; }

    // Sets `path`, with `leaf` (which must be relative) appended. A relative path starts at the
    // working directory. The directory of a path with a ".." component must exist
    // (B_ENTRY_NOT_FOUND) and is freed of ".." and links. B_BAD_VALUE for no path, an empty path or
    // an absolute leaf; the path is then unset.
    status_t SetTo(const char* path, const char* leaf = nullptr);
    status_t SetTo(const BEntry* entry);

    // Appends a relative path. B_BAD_VALUE for an absolute one, B_NO_INIT without a path.
    status_t Append(const char* path);

    // The path; null when none is set. Valid until the object changes.
    const char* Path() const { return fStatus == B_OK ? fPath.c_str() : nullptr; }
    // The path as the system's own programs name the place, to be shown to a person.
    std::string SystemPath() const;
    // The part behind the last slash ("" for "/"); null when no path is set.
    const char* Leaf() const;

    // The path without its leaf. B_ENTRY_NOT_FOUND for "/". `parent` may be this object.
    status_t GetParent(BPath* parent) const;

private:
    status_t SetToText(std::string text);
    status_t Fail(status_t status);

    std::string fPath;
    status_t fStatus = B_NO_INIT;
};

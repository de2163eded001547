#include "kits/storage/Path.h"

#include <unistd.h>

#include "host/files/Files.h"
#include "host/files/Paths.h"
#include "kits/storage/Entry.h"

namespace {

std::string WorkingDirectory() {
    std::string directory(4096, '\0');
    if (!getcwd(directory.data(), directory.size()))
        return "/";
    return host::PlatformPath(directory.c_str());
}

} // namespace

BPath::BPath(const char* path, const char* leaf) {
    SetTo(path, leaf);
}

BPath::BPath(const BEntry* entry) {
    SetTo(entry);
}

status_t BPath::SetTo(const char* path, const char* leaf) {
    std::string text = path ? path : "";
    std::string end = leaf ? leaf : "";
    if (text.empty() || end.starts_with('/'))
        return Fail(B_BAD_VALUE);
    if (!text.starts_with('/'))
        text = WorkingDirectory() + "/" + text;
    if (!end.empty())
        text += "/" + end;
    return SetToText(std::move(text));
}

status_t BPath::SetTo(const BEntry* entry) {
    return entry ? fStatus = entry->GetPath(this) : Fail(B_BAD_VALUE);
}

status_t BPath::Fail(status_t status) {
    fPath.clear();
    return fStatus = status;
}

status_t BPath::Append(const char* path) {
    if (fStatus != B_OK)
        return fStatus;
    if (!path || path[0] == '/')
        return B_BAD_VALUE;
    return SetToText(fPath + "/" + path);
}

std::string BPath::SystemPath() const {
    return fStatus == B_OK ? host::HostPath(fPath) : std::string();
}

const char* BPath::Leaf() const {
    return fStatus == B_OK ? fPath.c_str() + fPath.rfind('/') + 1 : nullptr;
}

status_t BPath::GetParent(BPath* parent) const {
    if (fStatus != B_OK)
        return fStatus;
    if (!parent)
        return B_BAD_VALUE;
    std::string path = host::ParentPath(fPath);
    return path.empty() ? B_ENTRY_NOT_FOUND : parent->SetTo(path.c_str());
}

status_t BPath::SetToText(std::string text) {
    std::string plain = host::PlainPath(text);
    if (host::HasParentComponent(plain)) {
        // Of a path that ends with "..", all is the directory.
        std::string directory = host::HostPath(plain);
        std::string leaf = host::LeafOf(directory);
        if (leaf == "..")
            leaf.clear();
        else
            directory = host::ParentPath(directory);
        status_t status = host::ResolvePath(directory, directory);
        if (status != B_OK)
            return Fail(status);
        plain = host::PlatformPath(leaf.empty() ? directory : host::Join(directory, leaf));
    }
    fPath = plain;
    return fStatus = B_OK;
}

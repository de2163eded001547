#include "host/files/Attributes.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstring>

namespace host {

const char* const kTypeAttribute = "mime_type";

namespace {

const std::string kPrefix = "user.";

// The calls that take a descriptor refuse an O_PATH one; this path leads to the node of any.
std::string PathOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

status_t AttributeStatus(int error) {
    if (error == ENODATA)
        return B_ENTRY_NOT_FOUND;
    if (error == ENOTSUP)
        return B_UNSUPPORTED;
    if (error == EPERM)
        return B_NOT_ALLOWED;
    if (error == ERANGE)
        return B_NAME_TOO_LONG;
    if (error == E2BIG)
        return B_DEVICE_FULL;
    return StatusFromErrno(error);
}

// Nearly all values fit into the first buffer, so the size need not be asked for. It may change
// between asking and reading; a few attempts settle it.
template <typename Call>
status_t ReadWhole(std::string& result, Call call) {
    char first[1024];
    ssize_t size = call(first, sizeof first);
    if (size >= 0) {
        result.assign(first, size_t(size));
        return B_OK;
    }
    for (int attempt = 0; attempt < 8 && errno == ERANGE; attempt++) {
        size = call(nullptr, 0);
        if (size < 0)
            return AttributeStatus(errno);
        result.resize(size_t(size));
        size = call(result.data(), result.size());
        if (size >= 0) {
            result.resize(size_t(size));
            return B_OK;
        }
    }
    return errno == ERANGE ? B_BUSY : AttributeStatus(errno);
}

} // namespace

status_t ReadAttribute(int descriptor, const std::string& name, std::string& value) {
    std::string path = PathOf(descriptor);
    std::string attribute = kPrefix + name;
    return ReadWhole(value, [&](char* buffer, size_t size) {
        return getxattr(path.c_str(), attribute.c_str(), buffer, size);
    });
}

status_t AttributeSize(int descriptor, const std::string& name, int64& size) {
    size = getxattr(PathOf(descriptor).c_str(), (kPrefix + name).c_str(), nullptr, 0);
    return size < 0 ? AttributeStatus(errno) : B_OK;
}

status_t WriteAttribute(int descriptor, const std::string& name, const std::string& value) {
    std::string path = PathOf(descriptor);
    int result = setxattr(path.c_str(), (kPrefix + name).c_str(), value.data(), value.size(), 0);
    return result == 0 ? B_OK : AttributeStatus(errno);
}

status_t ListAttributes(int descriptor, std::vector<std::string>& names) {
    std::string path = PathOf(descriptor);
    std::string list;
    names.clear();
    status_t status = ReadWhole(
        list, [&](char* buffer, size_t size) { return listxattr(path.c_str(), buffer, size); });
    if (status != B_OK)
        return status == B_DEVICE_FULL ? B_BAD_DATA : status;
    for (size_t start = 0; start < list.size(); start += strlen(list.c_str() + start) + 1) {
        if (list.compare(start, kPrefix.size(), kPrefix) == 0)
            names.emplace_back(list.c_str() + start + kPrefix.size());
    }
    return B_OK;
}

bool KeepsAttributes(const std::string& path) {
    ssize_t size = getxattr(path.c_str(), "user.mime_type", nullptr, 0);
    return size >= 0 || (errno != ENOTSUP && errno != ENOSYS && errno != ENOENT);
}

} // namespace host

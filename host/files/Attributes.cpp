#include "host/files/Attributes.h"

#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "host/files/Files.h"

namespace host {

const char* const kTypeAttribute = "mime_type";

namespace {

const std::string kPrefix = "user.";
constexpr size_t kUsualSize = 1024;

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

ssize_t Get(int descriptor, const std::string& name, char* value, size_t size) {
    const ssize_t got = fgetxattr(descriptor, name.c_str(), value, size);
    // It is an O_PATH descriptor.
    if (got < 0 && errno == EBADF)
        return getxattr(DescriptorPath(descriptor).c_str(), name.c_str(), value, size);
    return got;
}

} // namespace

// Nearly all values fit into the first buffer, so the size need not be asked for. It may change
// between asking and reading; a few attempts settle it.
status_t ReadAttribute(int descriptor, const std::string& name, std::string& value) {
    value.resize(kUsualSize);
    for (int attempt = 0; attempt < 8; attempt++) {
        ssize_t size = Get(descriptor, kPrefix + name, value.data(), value.size());
        if (size >= 0) {
            value.resize(size_t(size));
            return B_OK;
        }
        if (errno == ERANGE)
            size = Get(descriptor, kPrefix + name, nullptr, 0);
        if (size < 0)
            return AttributeStatus(errno);
        value.resize(size_t(size));
    }
    return B_BUSY;
}

status_t AttributeSize(int descriptor, const std::string& name, int64& size) {
    size = Get(descriptor, kPrefix + name, nullptr, 0);
    return size < 0 ? AttributeStatus(errno) : B_OK;
}

status_t WriteAttribute(int descriptor, const std::string& name, const std::string& value) {
    std::string path = DescriptorPath(descriptor);
    int result = setxattr(path.c_str(), (kPrefix + name).c_str(), value.data(), value.size(), 0);
    return result == 0 ? B_OK : AttributeStatus(errno);
}

// The list may grow between asking for its size and reading it.
status_t ListAttributes(int descriptor, std::vector<std::string>& names) {
    const std::string path = DescriptorPath(descriptor);
    std::string list;
    ssize_t size = 0;
    do {
        size = listxattr(path.c_str(), nullptr, 0);
        list.resize(size_t(std::max<ssize_t>(size, 0)));
        if (size > 0)
            size = listxattr(path.c_str(), list.data(), list.size());
    } while (size < 0 && errno == ERANGE);
    if (size < 0)
        return AttributeStatus(errno);
    list.resize(size_t(size));
    names.clear();
    for (size_t start = 0; start < list.size(); start += strlen(&list[start]) + 1) {
        if (std::string_view(&list[start]).starts_with(kPrefix))
            names.emplace_back(&list[start + kPrefix.size()]);
    }
    std::sort(names.begin(), names.end());
    return B_OK;
}

bool KeepsAttributes(const std::string& path) {
    ssize_t size = getxattr(path.c_str(), "user.mime_type", nullptr, 0);
    return size >= 0 || (errno != ENOTSUP && errno != ENOSYS && errno != ENOENT);
}

} // namespace host

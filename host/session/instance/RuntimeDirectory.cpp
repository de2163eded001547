#include "host/session/instance/RuntimeDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace host {

namespace {

constexpr size_t kLongestName = 64;

std::string DirectoryPath() {
    const char* runtime = getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/')
        return std::string(runtime) + "/quillbar";
    return "/tmp/quillbar-" + std::to_string(geteuid());
}

status_t CheckPrivate(int directory) {
    struct stat status;
    if (fstat(directory, &status) != 0)
        return StatusFromErrno(errno);
    if (status.st_uid != geteuid() || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        return B_NOT_ALLOWED;
    return B_OK;
}

uint64 Hash(const std::string& text) {
    uint64 hash = 0xcbf29ce484222325;
    for (unsigned char byte : text)
        hash = (hash ^ byte) * 0x100000001b3;
    return hash;
}

} // namespace

RuntimeDirectory::RuntimeDirectory(bool create)
    : fPath(DirectoryPath()) {
    if (create && mkdir(fPath.c_str(), 0700) != 0 && errno != EEXIST) {
        fStatus = StatusFromErrno(errno);
        return;
    }
    fDirectory = Descriptor(open(fPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    fStatus = fDirectory ? CheckPrivate(fDirectory.Get()) : StatusFromErrno(errno);
    if (fStatus != B_OK)
        fDirectory.Close();
}

std::string RuntimeFileName(const std::string& signature) {
    std::string name;
    for (unsigned char byte : signature) {
        char escaped[4];
        if (isalnum(byte) || byte == '-' || (byte == '.' && !name.empty()))
            name += static_cast<char>(byte);
        else if (snprintf(escaped, sizeof escaped, "%%%02X", byte) > 0)
            name += escaped;
    }
    if (name.size() <= kLongestName)
        return name;
    char hash[18];
    snprintf(hash, sizeof hash, "_%016" PRIx64, Hash(signature));
    return name.substr(0, kLongestName - sizeof hash + 1) + hash;
}

} // namespace host

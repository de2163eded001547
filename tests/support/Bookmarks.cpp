#include "tests/support/Bookmarks.h"

#include <fstream>
#include <stdexcept>
#include <sys/xattr.h>

namespace fs = std::filesystem;

namespace test {

namespace {

std::string WithNul(const std::string& text) {
    return {text.c_str(), text.size() + 1};
}

} // namespace

void MakeBookmark(const fs::path& path, const std::string& url, const std::string& keywords) {
    fs::create_directories(path.parent_path());
    std::ofstream(path).flush();
    SetAttribute(path, "mime_type", kBookmarkType);
    SetUrl(path, url);
    SetAttribute(path, "META:keyw", WithNul(keywords));
}

void SetAttribute(const fs::path& path, const std::string& name, const std::string& value) {
    if (setxattr(path.c_str(), ("user." + name).c_str(), value.data(), value.size(), 0) != 0)
        throw std::runtime_error("cannot write an attribute of " + path.string());
}

std::optional<std::string> GetAttribute(const fs::path& path, const std::string& name) {
    char bytes[65536];
    const ssize_t size = getxattr(path.c_str(), ("user." + name).c_str(), bytes, sizeof bytes);
    if (size < 0)
        return std::nullopt;
    return std::string(bytes, static_cast<size_t>(size));
}

void SetUrl(const fs::path& path, const std::string& url) {
    SetAttribute(path, "META:url", WithNul(url));
}

} // namespace test

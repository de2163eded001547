#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace test {

inline constexpr char kBookmarkType[] = "application/x-vnd.Be-bookmark";

// Makes a bookmark file, with the folders above it, as a person would by hand: an empty file with
// the type, then the address and the keywords, each with its NUL, as attributes.
void MakeBookmark(const std::filesystem::path& path, const std::string& url,
                  const std::string& keywords = "");

// `name` is an attribute's name without the name space ("META:url"); the value is written as it is.
void SetAttribute(const std::filesystem::path& path, const std::string& name,
                  const std::string& value);
std::optional<std::string> GetAttribute(const std::filesystem::path& path, const std::string& name);

// "META:url" as a string with its NUL.
void SetUrl(const std::filesystem::path& path, const std::string& url);

} // namespace test

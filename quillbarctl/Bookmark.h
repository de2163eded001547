#pragma once

#include <map>
#include <string>

// A bookmark as its file has it: what is behind "N - " in the file's name, and the bytes of all its
// attributes by their names.
struct Bookmark {
    std::string name;
    std::map<std::string, std::string> attributes;
};

// With the attributes that the Add Bookmark window writes.
Bookmark MakeBookmark(const std::string& name, const std::string& url, const std::string& keywords);

// What an attribute's bytes are as text: up to their first NUL. Empty if there is no such one.
std::string TextOf(const Bookmark& bookmark, const char* attribute);
// A text's bytes as an attribute.
std::string BytesOf(const std::string& text);

// What a file may be called behind "N - ": the name without control characters and "/", in UTF-8,
// and no longer than names are.
std::string UsableName(const std::string& name);
// The same; a name that has to change is reported on standard error.
std::string TakenName(const std::string& name);

// What stands for a page without a name: its address without what comes before the host.
std::string NameForUrl(const std::string& url);

// Why the address cannot be a bookmark; null if it can.
const char* RefusalOf(const std::string& url);

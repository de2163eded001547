#pragma once

#include <string>

#include "base/Types.h"

// The settings file on the disk. The path may lead to a symbolic link: the file that it points to
// is read, written and put aside. Any thread, one at a time.
namespace SettingsFile {

bool Exists(const char* path);

// Reads the whole file. B_ENTRY_NOT_FOUND if there is none, B_BAD_DATA if it is too long to be
// settings, otherwise the reason why it cannot be read.
status_t Read(const char* path, std::string& text);

// Replaces the content; the permission bits of a file that exists are kept. The text is written to
// "NAME.new" beside the file, which then takes the file's name, so that the old or the new content
// is on the disk at any moment, whole. Where the directory refuses that, the file itself is
// written. On failure the reason of the last try; the old content is there unless the file itself
// was being written.
status_t Write(const char* path, const std::string& text);

// Whether Write() is let into the file or its directory: B_OK, or the reason why not. May make and
// remove "NAME.new".
status_t CanWrite(const char* path);

// Renames the file "NAME.bad" and reports it on standard error.
void PutAside(const char* path);

} // namespace SettingsFile

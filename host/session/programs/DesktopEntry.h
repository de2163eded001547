#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Types.h"
#include "host/session/programs/Launcher.h"

namespace host {

// The most bytes that a file of the desktop's is read with; a longer one is not used.
inline constexpr size_t kMaxDesktopFile = 1 << 20;

// The content of a regular file, nothing if it cannot be read or is too long. Any thread.
std::optional<std::string> ReadDesktopFile(const std::string& path);

// A program as a desktop entry file describes it. Plain data.
class DesktopEntry {
public:
    // Reads the file. Nothing unless it describes a program that can be started here: one that is
    // not marked as removed (one that menus do not show is fine) and that is installed.
    static std::optional<DesktopEntry> Load(const std::string& path);

    const std::string& Path() const { return fPath; }
    // The program file itself, an absolute path.
    const std::string& Program() const { return fProgram; }
    // The value of the key X-Be-Signature, or empty.
    const std::string& Signature() const { return fSignature; }

    // How to start it with these arguments, each of which stays one argument. `B_BAD_VALUE` if one
    // begins with "-" or holds a control character.
    status_t MakeCommand(const std::vector<std::string>& arguments, Command& command) const;

private:
    std::string Expand(const std::string& word, const std::vector<std::string>& arguments,
                       bool& isPlaced) const;

    std::string fPath;
    std::string fName;
    std::string fIcon;
    std::string fSignature;
    std::string fDirectory;
    std::string fProgram;
    std::vector<std::string> fWords; // of the command line, field codes and all
};

} // namespace host

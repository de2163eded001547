#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Types.h"
#include "host/session/programs/Launcher.h"

namespace host {

// A longer file of the desktop's is not used, in bytes.
inline constexpr size_t kMaxDesktopFile = 1 << 20;

// The content of a regular file, nothing if it cannot be read or is too long. Any thread.
std::optional<std::string> ReadDesktopFile(const std::string& path);

// Which desktop entries a search takes.
enum class Wanted {
    Installed, // those whose program can be started here
    Any,       // those whose program is missing too, for their names
};

// A program as a desktop entry file describes it. Plain data.
class DesktopEntry {
public:
    // Reads the file. Nothing unless it describes a program and is not marked as removed; an entry
    // that menus do not show is fine.
    static std::optional<DesktopEntry> Load(const std::string& path,
                                            Wanted wanted = Wanted::Installed);

    const std::string& Path() const { return fPath; }
    // The program's name for a person, in the language of the environment.
    const std::string& Name() const { return fName; }
    // The program file itself, an absolute path.
    const std::string& Program() const { return fProgram; }
    // The value of the key X-Be-Signature, or empty.
    const std::string& Signature() const { return fSignature; }

    // Makes the command that starts it with these arguments, each of which stays one argument.
    // `B_BAD_VALUE` if one begins with "-" or holds a control character.
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
    std::vector<std::string> fWords; // of the command line, with its field codes
};

} // namespace host

#include "host/session/programs/DesktopEntry.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "host/loop/Descriptor.h"

namespace host {

namespace {

constexpr const char* kGroup = G_KEY_FILE_DESKTOP_GROUP;

// Runs a program that needs a terminal.
constexpr const char* kTerminal = "x-terminal-emulator";

// The field codes for the link or file that the program opens.
constexpr std::string_view kArgumentCodes = "uUfF";

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

std::string TakeString(char* string) {
    std::string result = string ? string : "";
    g_free(string);
    return result;
}

std::string Value(const KeyFile& file, const char* key) {
    return TakeString(g_key_file_get_string(file.get(), kGroup, key, nullptr));
}

bool Flag(const KeyFile& file, const char* key) {
    return g_key_file_get_boolean(file.get(), kGroup, key, nullptr);
}

std::vector<std::string> SplitCommand(const std::string& line) {
    int count = 0;
    char** words = nullptr;
    if (!g_shell_parse_argv(line.c_str(), &count, &words, nullptr))
        return {};
    std::vector<std::string> result(words, words + count);
    g_strfreev(words);
    return result;
}

bool IsHarmless(const std::string& argument) {
    return !argument.starts_with('-') &&
           std::none_of(argument.begin(), argument.end(),
                        [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; });
}

bool IsArgumentList(const std::string& word) {
    return word == "%U" || word == "%F";
}

} // namespace

std::optional<std::string> ReadDesktopFile(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status;
    if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > static_cast<off_t>(kMaxDesktopFile))
        return std::nullopt;
    std::string content(static_cast<size_t>(status.st_size), '\0');
    size_t length = 0;
    while (length < content.size()) {
        const ssize_t count = read(file.Get(), &content[length], content.size() - length);
        if (count <= 0)
            break;
        length += static_cast<size_t>(count);
    }
    content.resize(length);
    return content;
}

std::optional<DesktopEntry> DesktopEntry::Load(const std::string& path, Wanted wanted) {
    const std::optional<std::string> content = ReadDesktopFile(path);
    const KeyFile file(g_key_file_new());
    if (!content || !g_key_file_load_from_data(file.get(), content->data(), content->size(),
                                               G_KEY_FILE_NONE, nullptr))
        return std::nullopt;
    if (Value(file, "Type") != "Application" || Flag(file, "Hidden"))
        return std::nullopt;
    DesktopEntry entry;
    entry.fPath = path;
    entry.fWords = SplitCommand(Value(file, "Exec"));
    if (entry.fWords.empty())
        return std::nullopt;
    entry.fProgram = FindProgram(entry.fWords.front());
    if (Flag(file, "Terminal"))
        entry.fWords.insert(entry.fWords.begin(), {kTerminal, "-e"});
    const std::string required = Value(file, "TryExec");
    const bool isInstalled = !entry.fProgram.empty() &&
                             !FindProgram(entry.fWords.front()).empty() &&
                             (required.empty() || !FindProgram(required).empty());
    if (wanted == Wanted::Installed && !isInstalled)
        return std::nullopt;
    entry.fName =
        TakeString(g_key_file_get_locale_string(file.get(), kGroup, "Name", nullptr, nullptr));
    entry.fIcon = Value(file, "Icon");
    entry.fSignature = Value(file, "X-Be-Signature");
    entry.fDirectory = Value(file, "Path");
    return entry;
}

status_t DesktopEntry::MakeCommand(const std::vector<std::string>& arguments,
                                   Command& command) const {
    if (!std::all_of(arguments.begin(), arguments.end(), IsHarmless))
        return B_BAD_VALUE;

    const char* home = getenv("HOME");
    command.directory = !fDirectory.empty() ? fDirectory : home ? home : "/";
    command.program = FindProgram(fWords.front());
    command.arguments.clear();
    bool isPlaced = false;
    for (const std::string& word : fWords) {
        if (IsArgumentList(word) && !isPlaced) {
            command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
            isPlaced = true;
        } else if (word == "%i" && !fIcon.empty()) {
            command.arguments.insert(command.arguments.end(), {"--icon", fIcon});
        } else {
            const std::string expanded = Expand(word, arguments, isPlaced);
            if (!expanded.empty() || word.empty())
                command.arguments.push_back(expanded);
        }
    }
    if (!isPlaced)
        command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    return B_OK;
}

// A word of the command line with its field codes replaced; codes without a meaning here vanish.
// The first code for a link or file, in the whole line, becomes the first argument.
std::string DesktopEntry::Expand(const std::string& word, const std::vector<std::string>& arguments,
                                 bool& isPlaced) const {
    std::string expanded;
    for (size_t i = 0; i < word.size(); i++) {
        if (word[i] != '%') {
            expanded += word[i];
            continue;
        }
        const char code = ++i < word.size() ? word[i] : '\0';
        if (code == '%') {
            expanded += '%';
        } else if (code == 'c') {
            expanded += fName;
        } else if (code == 'k') {
            expanded += fPath;
        } else if (code != '\0' && kArgumentCodes.find(code) != std::string_view::npos &&
                   !isPlaced) {
            isPlaced = true;
            if (!arguments.empty())
                expanded += arguments.front();
        }
    }
    return expanded;
}

} // namespace host

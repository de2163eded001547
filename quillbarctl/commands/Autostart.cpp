#include <glib.h>
#include <unistd.h>

#include <climits>
#include <memory>
#include <string>

#include "base/Errors.h"
#include "host/session/programs/DesktopEntry.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"
#include "quillbar/base/SettingsFile.h"
#include "quillbarctl/CommandLine.h"

namespace {

constexpr const char* kGroup = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* kPlace = "autostart/quillbar.desktop";
constexpr const char* kGnomeSwitch = "X-GNOME-Autostart-enabled";
constexpr uint32 kDirectoryMode = 0700;

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

std::string OwnFile() {
    return std::string("/boot/home/config/settings/") + kPlace;
}

// An entry that is not there, or cannot be read, is empty.
KeyFile Read(const std::string& systemPath) {
    KeyFile file(g_key_file_new());
    const auto content = host::ReadDesktopFile(systemPath);
    const auto flags =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (content)
        g_key_file_load_from_data(file.get(), content->data(), content->size(), flags, nullptr);
    return file;
}

// Whether desktops start what the entry names.
bool Starts(const KeyFile& file) {
    return g_key_file_has_key(file.get(), kGroup, "Exec", nullptr) &&
           !g_key_file_get_boolean(file.get(), kGroup, "Hidden", nullptr) &&
           (!g_key_file_has_key(file.get(), kGroup, kGnomeSwitch, nullptr) ||
            g_key_file_get_boolean(file.get(), kGroup, kGnomeSwitch, nullptr));
}

// The system's entry, which the user's hides; empty if there is none.
std::string SystemFile() {
    const char* const* directories = g_get_system_config_dirs();
    for (; *directories; ++directories) {
        std::string path = std::string(*directories) + "/" + kPlace;
        if (access(path.c_str(), R_OK) == 0)
            return path;
    }
    return {};
}

// The bar that is installed with this program, else the one on PATH; empty if there is none.
std::string BarProgram() {
    char own[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", own, sizeof own);
    std::string path(own, static_cast<size_t>(length > 0 ? length : 0));
    path = path.substr(0, path.rfind('/') + 1) + "quillbar";
    return access(path.c_str(), X_OK) == 0 ? path : host::FindProgram("quillbar");
}

// A program's path as a word of a command line.
std::string Quoted(const std::string& path) {
    std::string quoted = "\"";
    for (const char letter : path) {
        if (letter == '%')
            quoted += '%';
        else if (letter == '"' || letter == '`' || letter == '$' || letter == '\\')
            quoted += '\\';
        quoted += letter;
    }
    return quoted + "\"";
}

int Write(const KeyFile& file) {
    const std::string path = OwnFile();
    BPath directory;
    BPath(path.c_str()).GetParent(&directory);
    status_t status = create_directory(directory.Path(), kDirectoryMode);
    char* text = g_key_file_to_data(file.get(), nullptr, nullptr);
    if (status == B_OK)
        status = SettingsFile::Write(path.c_str(), text);
    g_free(text);
    return status == B_OK ? 0
                          : Fail("%s cannot be written: %s",
                                 BPath(path.c_str()).SystemPath().c_str(), StatusText(status));
}

int TurnOn() {
    const std::string program = BarProgram();
    if (program.empty())
        return Fail("quillbar is neither beside this program nor on PATH");
    const KeyFile file = Read(BPath(OwnFile().c_str()).SystemPath());
    g_key_file_set_string(file.get(), kGroup, "Type", "Application");
    g_key_file_set_string(file.get(), kGroup, "Name", "Quillbar");
    g_key_file_set_string(file.get(), kGroup, "Exec", Quoted(program).c_str());
    g_key_file_set_string(file.get(), kGroup, "Icon", "quillbar");
    g_key_file_remove_key(file.get(), kGroup, "Hidden", nullptr);
    g_key_file_remove_key(file.get(), kGroup, kGnomeSwitch, nullptr);
    return Write(file);
}

// Without the user's entry that of the system would count.
int TurnOff() {
    const std::string path = OwnFile();
    if (SystemFile().empty()) {
        const status_t status = BEntry(path.c_str()).Remove();
        return status == B_OK || status == B_ENTRY_NOT_FOUND
                   ? 0
                   : Fail("%s cannot be removed: %s", BPath(path.c_str()).SystemPath().c_str(),
                          StatusText(status));
    }
    const KeyFile file = Read(BPath(path.c_str()).SystemPath());
    g_key_file_set_string(file.get(), kGroup, "Type", "Application");
    g_key_file_set_string(file.get(), kGroup, "Name", "Quillbar");
    g_key_file_set_boolean(file.get(), kGroup, "Hidden", true);
    return Write(file);
}

int ShowStatus() {
    const std::string own = OwnFile();
    const std::string path =
        BEntry(own.c_str(), true).IsFile() ? BPath(own.c_str()).SystemPath() : SystemFile();
    const KeyFile file = Read(path);
    if (!Starts(file))
        return Print("off\n");
    char* command = g_key_file_get_string(file.get(), kGroup, "Exec", nullptr);
    const std::string line = std::string("on\t") + (command ? command : "") + "\n";
    g_free(command);
    if (!host::DesktopEntry::Load(path))
        Warn("%s names a program that is not there; \"quillbarctl autostart on\" mends it",
             path.c_str());
    return Print(line);
}

} // namespace

void AddAutostartCommand(CommandLine& line) {
    CLI::App* autostart =
        line.app.add_subcommand("autostart", "start the bar at log-in, or no longer");
    autostart->require_subcommand(1);
    autostart->add_subcommand("on", "start it")->callback([&line] { line.status = TurnOn(); });
    autostart->add_subcommand("off", "do not")->callback([&line] { line.status = TurnOff(); });
    autostart->add_subcommand("status", "print \"on\" with the command, or \"off\"")
        ->callback([&line] { line.status = ShowStatus(); });
}

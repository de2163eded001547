#include "kits/app/Roster.h"

#include <sys/stat.h>

#include <string>
#include <vector>

#include "host/session/programs/Programs.h"

namespace {

constinit const BRoster sRoster;

entry_ref RefOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string directory = path.substr(0, slash + 1);
    struct stat status;
    if (stat(directory.c_str(), &status) != 0)
        return {};
    return {static_cast<int32>(status.st_dev), static_cast<int64>(status.st_ino),
            path.c_str() + slash + 1};
}

} // namespace

constinit const BRoster* be_roster = &sRoster;

status_t BRoster::FindApp(const char* signature, entry_ref* app) const {
    if (!signature)
        return B_BAD_VALUE;
    if (!app)
        return host::HasProgramFor(signature) ? B_OK : B_LAUNCH_FAILED_APP_NOT_FOUND;
    const auto program = host::FindProgramFor(signature);
    if (!program)
        return B_LAUNCH_FAILED_APP_NOT_FOUND;
    *app = RefOf(program->Program());
    return B_OK;
}

status_t BRoster::Launch(const char* signature, int argc, const char* const* argv) const {
    if (!signature || argc < 0 || (argc > 0 && !argv))
        return B_BAD_VALUE;
    std::vector<std::string> arguments;
    for (int i = 0; i < argc; i++) {
        if (!argv[i])
            return B_BAD_VALUE;
        arguments.emplace_back(argv[i]);
    }
    const auto program = host::FindProgramFor(signature);
    if (!program)
        return B_LAUNCH_FAILED_APP_NOT_FOUND;
    host::Command command;
    const status_t status = program->MakeCommand(arguments, command);
    return status == B_OK ? host::LaunchDetached(command) : status;
}

#include "kits/app/Roster.h"

#include <string>
#include <vector>

#include "host/session/programs/Programs.h"
#include "kits/app/Message.h"

namespace {

constinit const BRoster sRoster;

void ReportFailure(const BMessenger& report, const std::string& name) {
    BMessage message(B_PROGRAM_FAILED);
    message.AddString("name", name.c_str());
    report.SendMessage(&message);
}

} // namespace

constinit const BRoster* be_roster = &sRoster;

status_t BRoster::FindApp(const char* signature) const {
    if (!signature)
        return B_BAD_VALUE;
    return host::HasProgramFor(signature) ? B_OK : B_LAUNCH_FAILED_APP_NOT_FOUND;
}

BString BRoster::NameOf(const char* signature) const {
    if (!signature)
        return {};
    auto program = host::FindProgramFor(signature);
    if (!program)
        program = host::FindProgramFor(signature, host::Wanted::Any);
    return program ? program->Name().c_str() : "";
}

status_t BRoster::Launch(const char* signature, int argc, const char* const* argv,
                         const BMessenger& report) const {
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
    if (status != B_OK)
        return status;
    return host::LaunchDetached(command,
                                [report, name = program->Name()] { ReportFailure(report, name); });
}

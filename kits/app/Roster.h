#pragma once

#include "base/Types.h"
#include "kits/app/Messenger.h"
#include "kits/support/String.h"

// The message that reports a program which ended at once with an error: "name" (string).
inline constexpr uint32 B_PROGRAM_FAILED = 'PGFL';

// Finds and starts the programs of the desktop. A program is named by its signature, or by a type
// of files or links that it is the desktop's choice for; README.md lists which program of this
// desktop stands for which name. A desktop entry with the key X-Be-Signature=NAME goes before any
// other. The next call notices what is installed or removed meanwhile. Any thread.
class BRoster {
public:
    // Whether a program stands for the name. B_BAD_VALUE without a name,
    // B_LAUNCH_FAILED_APP_NOT_FOUND if none does.
    status_t FindApp(const char* signature) const;

    // The name of that program for a person; of one that the desktop has chosen but that is not
    // installed, if there is no other; empty if there is none at all.
    BString NameOf(const char* signature) const;

    // Starts the program with the `argc` arguments `argv`, which it gets as they are: no shell
    // reads them. A program that can take only one is given the first. It runs on when this program
    // ends. Returns once it runs. `report` then gets B_PROGRAM_FAILED if the program ends within
    // about a second, by a signal or with an exit status other than 0. B_BAD_VALUE: an argument is
    // null, begins with "-" (it would be read as an option) or holds a control character.
    // B_LAUNCH_FAILED_APP_NOT_FOUND as above. Otherwise the reason why the system could not run the
    // program.
    status_t Launch(const char* signature, int argc, const char* const* argv,
                    const BMessenger& report = BMessenger()) const;
};

// The one roster; there from the start of main() on.
extern const BRoster* be_roster;

#pragma once

#include "base/EntryRef.h"
#include "base/Types.h"

// Finds and starts the programs of the desktop. A program is named by its signature, or by a type
// of files or links that it is the desktop's choice for; README.md says which program of
// this desktop stands for which name. A desktop entry with the key X-Be-Signature=NAME goes before
// any other. What is installed or removed meanwhile is noticed by the next call. Any thread.
class BRoster {
public:
    // Finds the program and stores the entry of its executable file in `app`. That may be null;
    // whether there is a program is then found out at less cost.
    // B_BAD_VALUE without a name, B_LAUNCH_FAILED_APP_NOT_FOUND if no program stands for it.
    status_t FindApp(const char* signature, entry_ref* app) const;

    // Starts the program with the `argc` arguments `argv`, which it gets as they are: no shell
    // reads them. A program that can take only one is given the first. It is nobody's child and
    // runs on when this program ends. Returns once it has been started, which says nothing about
    // how it gets on. B_BAD_VALUE: an argument is null, begins with "-" (it would be read as an
    // option) or holds a control character. B_LAUNCH_FAILED_APP_NOT_FOUND as above.
    // B_LAUNCH_FAILED: the desktop entry cannot be used. Otherwise the reason why the system could
    // not run its program.
    status_t Launch(const char* signature, int argc, const char* const* argv) const;
};

// The one roster; there from the start of main() on.
extern const BRoster* be_roster;

#include "quillbar/store/EndProgram.h"

#include <cstdio>
#include <cstdlib>

#include "quillbar/base/Settings.h"

// Other threads run on until the process is gone, so nothing may be torn down under them.
void EndProgram() {
    if (gSettings)
        gSettings->Save();
    std::fflush(stdout);
    std::_Exit(EXIT_FAILURE);
}

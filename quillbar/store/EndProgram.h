#pragma once

// Ends the process at once, with status 1, without asking the windows. The settings are saved.
[[noreturn]] void EndProgram();

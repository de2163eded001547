#pragma once

#include <CLI/CLI.hpp>

// What the program ends with besides 0.
inline constexpr int kFailed = 1;
inline constexpr int kBadUse = 2;

// The arguments, and what the subcommand that they choose came to. A subcommand's file adds it to
// `app`; its callback does the work and sets `status`.
struct CommandLine {
    CLI::App app;
    int status = 0;
};

void AddActivateCommands(CommandLine& line);
void AddListCommand(CommandLine& line);
void AddOpenCommand(CommandLine& line);
void AddAddCommand(CommandLine& line);
void AddImportCommand(CommandLine& line);
void AddExportCommand(CommandLine& line);
void AddAutostartCommand(CommandLine& line);

// Prints "quillbarctl: TEXT" on standard error. Fail() returns kFailed.
[[gnu::format(printf, 1, 2)]] void Warn(const char* format, ...);
[[gnu::format(printf, 1, 2)]] int Fail(const char* format, ...);

// Writes the text to standard output; a failure is reported. Returns the exit status.
int Print(const std::string& text);

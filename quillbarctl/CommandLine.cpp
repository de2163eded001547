#include "quillbarctl/CommandLine.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "base/Errors.h"

namespace {

void PrintLine(const char* format, va_list arguments) {
    std::fputs("quillbarctl: ", stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
}

} // namespace

void Warn(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    PrintLine(format, arguments);
    va_end(arguments);
}

int Fail(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    PrintLine(format, arguments);
    va_end(arguments);
    return kFailed;
}

int Print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0)
        return 0;
    return Fail("standard output cannot be written: %s", StatusText(StatusFromErrno(errno)));
}

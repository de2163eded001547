#include "quillbar/base/Trace.h"

#include <cstdarg>
#include <cstdio>

void Trace(const char* signature, const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    std::printf("%s:\n\t%s\n", signature, text);
}

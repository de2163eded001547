#pragma once

#include "base/Types.h"

// How a file is opened: one of the first three, with any of the others added.
enum : uint32 {
    B_READ_ONLY = 0x0000,
    B_WRITE_ONLY = 0x0001,
    B_READ_WRITE = 0x0002,

    B_FAIL_IF_EXISTS = 0x0100, // with B_CREATE_FILE: an existing file is B_FILE_EXISTS
    B_CREATE_FILE = 0x0200,    // a missing file is created
    B_ERASE_FILE = 0x0400,     // an existing file is emptied
};

// The size of a buffer that holds any MIME type that BNodeInfo hands out, with its NUL.
inline constexpr int32 B_MIME_TYPE_LENGTH = 240;

// The size of a buffer that holds the name of any attribute, with its NUL.
inline constexpr int32 B_ATTR_NAME_LENGTH = 256;

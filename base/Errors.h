#pragma once

#include <cstdint>

// The result of an operation: B_OK, a positive count where its comment allows one, or one of the
// negative values below.
using status_t = std::int32_t;

enum : status_t {
    B_OK = 0,
    B_ERROR = -1,

    B_NO_MEMORY = INT32_MIN,
    B_IO_ERROR,
    B_PERMISSION_DENIED,
    B_BAD_INDEX,
    B_BAD_TYPE,
    B_BAD_VALUE,
    B_MISMATCHED_VALUES,
    B_NAME_NOT_FOUND,
    B_TIMED_OUT,
    B_INTERRUPTED,
    B_WOULD_BLOCK,
    B_CANCELED,
    B_NO_INIT,
    B_BUSY,
    B_NOT_ALLOWED,
    B_BAD_DATA,

    B_BAD_THREAD_ID = INT32_MIN + 0x1100,

    B_BAD_PORT_ID = INT32_MIN + 0x1200,
    B_BAD_HANDLER,
    B_ALREADY_RUNNING,
    B_LAUNCH_FAILED_APP_NOT_FOUND,

    B_FILE_ERROR = INT32_MIN + 0x6000,
    B_FILE_EXISTS,
    B_ENTRY_NOT_FOUND,
    B_NAME_TOO_LONG,
    B_NOT_A_DIRECTORY,
    B_DIRECTORY_NOT_EMPTY,
    B_DEVICE_FULL,
    B_READ_ONLY_DEVICE,
    B_IS_A_DIRECTORY,
    B_NO_MORE_FDS,
    B_CROSS_DEVICE_LINK,
    B_LINK_LIMIT,
    B_UNSUPPORTED,
};

// The status that stands for an `errno` value; B_ERROR for one that has no name here.
// The only place where one becomes the other. Any thread.
status_t StatusFromErrno(int error);

// A few words for a person, in English: "No space left on device". Never null. Any thread.
const char* StatusText(status_t status);

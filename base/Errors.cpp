#include "base/Errors.h"

#include <cerrno>

namespace {

struct StatusRow {
    int error;
    status_t status;
    const char* text;
};

// The first row of a status gives its text.
constexpr StatusRow kRows[] = {
    {0, B_OK, "No error"},
    {ENOMEM, B_NO_MEMORY, "Out of memory"},
    {EIO, B_IO_ERROR, "Input/output error"},
    {EACCES, B_PERMISSION_DENIED, "Permission denied"},
    {EPERM, B_NOT_ALLOWED, "Operation not permitted"},
    {EINVAL, B_BAD_VALUE, "Invalid argument"},
    {ETIMEDOUT, B_TIMED_OUT, "Operation timed out"},
    {EINTR, B_INTERRUPTED, "Interrupted"},
    {EAGAIN, B_WOULD_BLOCK, "Operation would block"},
    {ECANCELED, B_CANCELED, "Operation cancelled"},
    {EBUSY, B_BUSY, "Device or resource busy"},
    {EBADF, B_FILE_ERROR, "Bad file descriptor"},
    {EEXIST, B_FILE_EXISTS, "File exists"},
    {ENOENT, B_ENTRY_NOT_FOUND, "No such file or directory"},
    {ENODATA, B_ENTRY_NOT_FOUND, "No such file or directory"},
    {ENAMETOOLONG, B_NAME_TOO_LONG, "File name too long"},
    {ENOTDIR, B_NOT_A_DIRECTORY, "Not a directory"},
    {ENOTEMPTY, B_DIRECTORY_NOT_EMPTY, "Directory not empty"},
    {ENOSPC, B_DEVICE_FULL, "No space left on device"},
    {EDQUOT, B_DEVICE_FULL, "No space left on device"},
    {EROFS, B_READ_ONLY_DEVICE, "Read-only file system"},
    {EISDIR, B_IS_A_DIRECTORY, "Is a directory"},
    {EMFILE, B_NO_MORE_FDS, "Too many open files"},
    {ENFILE, B_NO_MORE_FDS, "Too many open files"},
    {EXDEV, B_CROSS_DEVICE_LINK, "Cross-device link"},
    {ELOOP, B_LINK_LIMIT, "Too many levels of symbolic links"},
    {ENOTSUP, B_UNSUPPORTED, "Operation not supported"},
    {E2BIG, B_BAD_DATA, "Value too large"},
    {ERANGE, B_BAD_DATA, "Value too large"},
};

} // namespace

status_t StatusFromErrno(int error) {
    for (const StatusRow& row : kRows) {
        if (row.error == error)
            return row.status;
    }
    return B_ERROR;
}

const char* StatusText(status_t status) {
    for (const StatusRow& row : kRows) {
        if (row.status == status)
            return row.text;
    }
    return "General error";
}

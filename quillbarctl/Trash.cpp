#include "quillbarctl/Trash.h"

#include <gio/gio.h>

#include "base/Errors.h"
#include "quillbarctl/CommandLine.h"

status_t MoveToTrash(const std::string& path) {
    // The local files' own, which needs no daemon.
    GFile* file = g_vfs_get_file_for_path(g_vfs_get_local(), path.c_str());
    GError* error = nullptr;
    const bool isGone = g_file_trash(file, nullptr, &error);
    if (!isGone) {
        Warn("%s cannot be moved to the trash: %s", path.c_str(), error->message);
        g_error_free(error);
    }
    g_object_unref(file);
    return isGone ? B_OK : B_ERROR;
}

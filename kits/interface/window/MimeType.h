#pragma once

#include <string>

#include "base/Types.h"

class BBitmap;

// The sizes of icons, in logical pixels.
enum icon_size {
    B_LARGE_ICON = 32,
    B_MINI_ICON = 16,
};

// A type of files and its icon. It belongs to this kit because it draws. Any thread.
class BMimeType {
public:
    explicit BMimeType(const char* type)
        : fType(type ? type : "") {}

    const char* Type() const { return fType.c_str(); }

    // Draws the icon of files of this type into `icon`, a B_CMAP8 bitmap that is `size` pixels wide
    // and high (B_BAD_VALUE otherwise). B_ENTRY_NOT_FOUND for a type without an icon: bookmarks and
    // persons have one.
    status_t GetIcon(BBitmap* icon, icon_size size) const;

private:
    std::string fType;
};

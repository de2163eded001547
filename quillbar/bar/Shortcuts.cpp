#include "quillbar/bar/Shortcuts.h"

namespace {

constexpr int32 kMainRow[10] = {0x1b, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1a};
constexpr int32 kKeypad[10] = {0x64, 0x58, 0x59, 0x5a, 0x48, kKeypad5, 0x4a, 0x37, 0x38, 0x39};

} // namespace

int FolderOfKey(int32 key) {
    for (int digit = 0; digit < 10; ++digit) {
        if (key == kMainRow[digit] || key == kKeypad[digit])
            return digit;
    }
    return -1;
}

bool IsAddBookmarkKey(int32 key) {
    return key == 0x1c || key == 0x25 || key == 0x3a;
}

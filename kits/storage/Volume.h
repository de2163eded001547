#pragma once

#include <string>

#include "base/Types.h"

// A mounted disk, as seen from one entry on it: BEntry::GetVolume sets it. A value.
class BVolume {
public:
    BVolume() = default;

    status_t InitCheck() const { return fStatus; }

    // The number that entry_ref and node_ref use for the disk.
    int32 Device() const { return fDevice; }

    // Whether files there can have attributes. It is learned by asking the entry for an attribute
    // that it does not have: a disk without attributes answers differently from one with them, and
    // nothing is written.
    bool KnowsAttr() const;

private:
    friend class BEntry;

    std::string fHostPath;
    int32 fDevice = -1;
    status_t fStatus = B_NO_INIT;
};

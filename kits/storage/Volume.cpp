#include "kits/storage/Volume.h"

#include "host/files/Attributes.h"

bool BVolume::KnowsAttr() const {
    return fStatus == B_OK && host::KeepsAttributes(fHostPath);
}

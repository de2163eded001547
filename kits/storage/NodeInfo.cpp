#include "kits/storage/NodeInfo.h"

#include <cstring>
#include <string>

#include "host/files/Attributes.h"
#include "kits/storage/Node.h"

BNodeInfo::BNodeInfo(BNode* node) {
    SetTo(node);
}

status_t BNodeInfo::SetTo(BNode* node) {
    fNode = node && node->InitCheck() == B_OK ? node : nullptr;
    return fNode ? B_OK : B_BAD_VALUE;
}

status_t BNodeInfo::GetType(char* type) const {
    if (!fNode)
        return B_NO_INIT;
    if (!type)
        return B_BAD_VALUE;
    char value[B_MIME_TYPE_LENGTH];
    ssize_t size = fNode->ReadAttr(host::kTypeAttribute, B_MIME_TYPE, 0, value, sizeof(value));
    if (size < 0)
        return status_t(size);
    size_t length = strnlen(value, size_t(size));
    if (length == 0 || length == sizeof(value))
        return B_BAD_DATA;
    memcpy(type, value, length);
    type[length] = '\0';
    return B_OK;
}

status_t BNodeInfo::SetType(const char* type) {
    if (!fNode)
        return B_NO_INIT;
    if (!type)
        return fNode->RemoveAttr(host::kTypeAttribute);
    size_t length = strlen(type);
    if (length == 0 || length >= B_MIME_TYPE_LENGTH)
        return B_BAD_VALUE;
    // Other programs read the whole value as the type: it is kept without a NUL.
    ssize_t size = fNode->WriteAttr(host::kTypeAttribute, B_MIME_TYPE, 0, type, length);
    return size < 0 ? status_t(size) : B_OK;
}

#include "kits/storage/Node.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "host/files/Attributes.h"
#include "host/files/Files.h"
#include "host/files/NodeStatus.h"
#include "host/files/Paths.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"

BNode::BNode(const char* path) {
    SetTo(path);
}

BNode::BNode(const BEntry* entry) {
    SetTo(entry);
}

status_t BNode::SetTo(const char* path) {
    BEntry entry(path);
    return SetTo(&entry);
}

status_t BNode::SetTo(const BEntry* entry) {
    host::Descriptor node;
    status_t status = entry ? entry->InitCheck() : B_BAD_VALUE;
    if (status == B_OK)
        status = host::OpenPathOnly(entry->fHostPath, node);
    return status == B_OK ? SetToDescriptor(std::move(node)) : Fail(status);
}

status_t BNode::SetToDescriptor(host::Descriptor descriptor) {
    fDescriptor = std::move(descriptor);
    return fStatus = B_OK;
}

status_t BNode::Fail(status_t status) {
    fDescriptor = host::Descriptor();
    return fStatus = status;
}

ssize_t BNode::ReadAttr(const char* name, type_code, off_t offset, void* buffer,
                        size_t length) const {
    if (fStatus != B_OK)
        return fStatus;
    if (!name || !buffer || offset < 0)
        return B_BAD_VALUE;
    std::string value;
    status_t status = host::ReadAttribute(fDescriptor.Get(), name, value);
    if (status != B_OK)
        return status;
    size_t start = std::min(size_t(offset), value.size());
    size_t count = std::min(length, value.size() - start);
    memcpy(buffer, value.data() + start, count);
    return ssize_t(count);
}

ssize_t BNode::WriteAttr(const char* name, type_code, off_t offset, const void* buffer,
                         size_t length) {
    if (fStatus != B_OK)
        return fStatus;
    if (!name || (!buffer && length > 0) || offset != 0)
        return B_BAD_VALUE;
    std::string value(static_cast<const char*>(buffer), length);
    status_t status = host::WriteAttribute(fDescriptor.Get(), name, value);
    return status == B_OK ? ssize_t(length) : status;
}

status_t BNode::GetAttrInfo(const char* name, attr_info* info) const {
    if (fStatus != B_OK)
        return fStatus;
    int64 size = 0;
    status_t status =
        name && info ? host::AttributeSize(fDescriptor.Get(), name, size) : B_BAD_VALUE;
    if (status == B_OK)
        *info = {B_STRING_TYPE, off_t(size)};
    return status;
}

status_t BNode::GetNextAttrName(char* name) {
    if (fStatus != B_OK)
        return fStatus;
    if (!fAttributes) {
        std::vector<std::string> names;
        const status_t status = host::ListAttributes(fDescriptor.Get(), names);
        if (status != B_OK)
            return status;
        fAttributes.emplace(names.rbegin(), names.rend());
    }
    if (fAttributes->empty()) {
        fAttributes.reset();
        return B_ENTRY_NOT_FOUND;
    }
    const std::string& next = fAttributes->back();
    name[next.copy(name, B_ATTR_NAME_LENGTH - 1)] = '\0';
    fAttributes->pop_back();
    return B_OK;
}

status_t BNode::Lock() {
    return fStatus == B_OK ? host::LockNode(fDescriptor.Get(), fLock) : fStatus;
}

status_t BNode::GetPermissions(mode_t* permissions) const {
    if (fStatus != B_OK)
        return fStatus;
    host::NodeStatus status;
    const status_t result = host::Stat(fDescriptor.Get(), "", status);
    if (result == B_OK)
        *permissions = status.mode & 07777;
    return result;
}

status_t BNode::SetPermissions(mode_t permissions) {
    if (fStatus != B_OK)
        return fStatus;
    return host::SetPermissions(fDescriptor.Get(), permissions & 07777);
}

status_t BNode::Sync() {
    return fStatus == B_OK ? host::SyncNode(fDescriptor.Get()) : fStatus;
}

BNodeInfo::BNodeInfo(BNode* node)
    : fNode(node && node->InitCheck() == B_OK ? node : nullptr) {}

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
    size_t length = type ? strlen(type) : 0;
    if (length == 0 || length >= B_MIME_TYPE_LENGTH)
        return B_BAD_VALUE;
    // Other programs read the whole value as the type: it is kept without a NUL.
    ssize_t size = fNode->WriteAttr(host::kTypeAttribute, B_MIME_TYPE, 0, type, length);
    return size < 0 ? status_t(size) : B_OK;
}

status_t BSymLink::MakeLinkedPath(const char* directoryPath, BPath* path) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    std::string target;
    const status_t status = host::ReadLink(fDescriptor.Get(), target);
    if (status != B_OK)
        return status;
    if (target.starts_with('/'))
        return path->SetTo(host::PlatformPath(target).c_str());
    return path->SetTo(directoryPath, target.c_str());
}

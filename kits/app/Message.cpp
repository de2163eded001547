#include "kits/app/Message.h"

#include <algorithm>
#include <cstring>

#include "kits/app/MessageField.h"

BMessage::BMessage() = default;

BMessage::BMessage(uint32 what_)
    : what(what_) {}

BMessage::BMessage(const BMessage&) = default;
BMessage::BMessage(BMessage&&) noexcept = default;
BMessage& BMessage::operator=(const BMessage&) = default;
BMessage& BMessage::operator=(BMessage&&) noexcept = default;
BMessage::~BMessage() = default;

size_t SizeOfType(type_code type) {
    switch (type) {
    case B_BOOL_TYPE:
    case B_INT8_TYPE:
        return 1;
    case B_INT16_TYPE:
        return 2;
    case B_INT32_TYPE:
    case B_UINT32_TYPE:
    case B_FLOAT_TYPE:
        return 4;
    case B_INT64_TYPE:
    case B_DOUBLE_TYPE:
    case B_POINT_TYPE:
        return 8;
    case B_RECT_TYPE:
        return 16;
    case B_POINTER_TYPE:
        return sizeof(void*);
    default:
        return 0;
    }
}

static bool IsSizeOfType(type_code type, ssize_t size) {
    const size_t needed = SizeOfType(type);
    return size >= 0 && (needed == 0 || needed == static_cast<size_t>(size));
}

BMessage::Field* BMessage::FieldNamed(const char* name) {
    for (Field& field : fFields) {
        if (field.name == name)
            return &field;
    }
    return nullptr;
}

status_t BMessage::FindField(const char* name, type_code type, int32 index,
                             const Field** found) const {
    if (!name)
        return B_BAD_VALUE;
    const Field* field = const_cast<BMessage*>(this)->FieldNamed(name);
    if (!field)
        return B_NAME_NOT_FOUND;
    if (type != B_ANY_TYPE && type != field->type)
        return B_BAD_TYPE;
    if (index < 0 || static_cast<size_t>(index) >= field->values.size())
        return B_BAD_INDEX;
    *found = field;
    return B_OK;
}

template <typename Value>
status_t BMessage::AddValue(const char* name, type_code type, bool isFixedSize, Value value) {
    if (!name)
        return B_BAD_VALUE;
    Field* field = FieldNamed(name);
    if (!field) {
        fFields.push_back({name, type, isFixedSize, {}});
        field = &fFields.back();
    }
    if (field->type != type)
        return B_BAD_TYPE;
    field->values.emplace_back(std::move(value));
    return B_OK;
}

template <typename Value>
status_t BMessage::ReplaceValue(const char* name, type_code type, int32 index, Value value) {
    const Field* found;
    const status_t status = FindField(name, type, index, &found);
    if (status == B_OK)
        const_cast<Field*>(found)->values[index] = std::move(value);
    return status;
}

template <typename Value>
status_t BMessage::FindValue(const char* name, type_code type, int32 index,
                             const Value** value) const {
    const Field* field;
    const status_t status = FindField(name, type, index, &field);
    if (status != B_OK)
        return status;
    const Value* found = std::get_if<Value>(&field->values[index]);
    if (!found)
        return B_BAD_TYPE;
    *value = found;
    return B_OK;
}

static bool HoldsBytes(type_code type) {
    return type != B_ANY_TYPE && type != B_MESSAGE_TYPE && type != B_MESSENGER_TYPE;
}

status_t BMessage::AddData(const char* name, type_code type, const void* data, ssize_t size,
                           bool isFixedSize, int32) {
    if (!name || !data || !HoldsBytes(type) || !IsSizeOfType(type, size))
        return B_BAD_VALUE;
    const Field* field = FieldNamed(name);
    if (field && field->type == type && !HasRoomFor(*field, size))
        return B_BAD_VALUE;
    // The size of a string is its own, whatever the caller says.
    return AddValue(name, type, isFixedSize && type != B_STRING_TYPE,
                    std::string(static_cast<const char*>(data), size));
}

status_t BMessage::ReplaceData(const char* name, type_code type, const void* data, ssize_t size) {
    return ReplaceData(name, type, 0, data, size);
}

status_t BMessage::ReplaceData(const char* name, type_code type, int32 index, const void* data,
                               ssize_t size) {
    if (!name || !data || !HoldsBytes(type) || !IsSizeOfType(type, size))
        return B_BAD_VALUE;
    const Field* field;
    const status_t status = FindField(name, type, index, &field);
    if (status != B_OK)
        return status;
    if (field->values.size() > 1 && !HasRoomFor(*field, size))
        return B_BAD_VALUE;
    return ReplaceValue(name, type, index, std::string(static_cast<const char*>(data), size));
}

// Whether a value of this size keeps to the field's fixed size.
bool BMessage::HasRoomFor(const Field& field, ssize_t size) {
    return !field.isFixedSize ||
           std::get<std::string>(field.values.front()).size() == static_cast<size_t>(size);
}

status_t BMessage::FindData(const char* name, type_code type, const void** data,
                            ssize_t* size) const {
    return FindData(name, type, 0, data, size);
}

status_t BMessage::FindData(const char* name, type_code type, int32 index, const void** data,
                            ssize_t* size) const {
    if (!data)
        return B_BAD_VALUE;
    const std::string* bytes;
    const status_t status = FindValue(name, type, index, &bytes);
    if (status != B_OK)
        return status;
    *data = bytes->data();
    if (size)
        *size = static_cast<ssize_t>(bytes->size());
    return B_OK;
}

bool BMessage::HasData(const char* name, type_code type, int32 index) const {
    const Field* field;
    return FindField(name, type, index, &field) == B_OK;
}

status_t BMessage::AddMessenger(const char* name, const BMessenger& value) {
    return AddValue(name, B_MESSENGER_TYPE, false, value);
}

status_t BMessage::ReplaceMessenger(const char* name, int32 index, const BMessenger& value) {
    return ReplaceValue(name, B_MESSENGER_TYPE, index, value);
}

status_t BMessage::FindMessenger(const char* name, int32 index, BMessenger* value) const {
    const BMessenger* found;
    const status_t status = FindValue(name, B_MESSENGER_TYPE, index, &found);
    if (status == B_OK && !value)
        return B_BAD_VALUE;
    if (status == B_OK)
        *value = *found;
    return status;
}

int32 BMessage::Depth() const {
    int32 deepest = 0;
    for (const Field& field : fFields) {
        if (field.type != B_MESSAGE_TYPE)
            continue;
        for (const Field::Value& value : field.values)
            deepest = std::max(deepest, std::get<2>(value)->Depth());
    }
    return deepest + 1;
}

status_t BMessage::AddMessage(const char* name, const BMessage* value) {
    if (!value || value->Depth() >= kMaxMessageDepth)
        return B_BAD_VALUE;
    return AddValue(name, B_MESSAGE_TYPE, false, std::make_shared<const BMessage>(*value));
}

status_t BMessage::ReplaceMessage(const char* name, int32 index, const BMessage* value) {
    if (!value || value->Depth() >= kMaxMessageDepth)
        return B_BAD_VALUE;
    return ReplaceValue(name, B_MESSAGE_TYPE, index, std::make_shared<const BMessage>(*value));
}

status_t BMessage::FindMessage(const char* name, int32 index, BMessage* value) const {
    if (!value)
        return B_BAD_VALUE;
    const std::shared_ptr<const BMessage>* found;
    const status_t status = FindValue(name, B_MESSAGE_TYPE, index, &found);
    if (status != B_OK)
        return status;
    // A hold of its own: `value` may be this message.
    const std::shared_ptr<const BMessage> message = *found;
    *value = *message;
    return B_OK;
}

status_t BMessage::RemoveName(const char* name) {
    if (!name)
        return B_BAD_VALUE;
    const auto isNamed = [name](const Field& field) { return field.name == name; };
    return std::erase_if(fFields, isNamed) > 0 ? B_OK : B_NAME_NOT_FOUND;
}

status_t BMessage::MakeEmpty() {
    fFields.clear();
    return B_OK;
}

bool BMessage::IsEmpty() const {
    return fFields.empty();
}

static bool IsType(type_code wanted, type_code type) {
    return wanted == B_ANY_TYPE || wanted == type;
}

int32 BMessage::CountNames(type_code type) const {
    return static_cast<int32>(
        std::count_if(fFields.begin(), fFields.end(),
                      [type](const Field& field) { return IsType(type, field.type); }));
}

status_t BMessage::GetInfo(const char* name, type_code* type, int32* count) const {
    const Field* field;
    const status_t status = FindField(name, B_ANY_TYPE, 0, &field);
    if (status != B_OK)
        return status;
    if (type)
        *type = field->type;
    if (count)
        *count = static_cast<int32>(field->values.size());
    return B_OK;
}

status_t BMessage::GetInfo(type_code type, int32 index, const char** nameFound,
                           type_code* typeFound, int32* countFound) const {
    if (index < 0)
        return B_BAD_INDEX;
    for (const Field& field : fFields) {
        if (!IsType(type, field.type) || index-- > 0)
            continue;
        if (nameFound)
            *nameFound = field.name.c_str();
        return GetInfo(field.name.c_str(), typeFound, countFound);
    }
    return B_BAD_INDEX;
}

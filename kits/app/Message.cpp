#include "kits/app/Message.h"

#include <algorithm>
#include <cstring>

#include "kits/app/MessageText.h"

namespace {

bool IsValue(type_code type, const void* data, ssize_t size) {
    const size_t needed = SizeOfType(type);
    return data && type != B_ANY_TYPE && size >= 0 &&
           (needed == 0 || needed == static_cast<size_t>(size));
}

std::string BytesOf(const void* data, ssize_t size) {
    return std::string(static_cast<const char*>(data), static_cast<size_t>(size));
}

// Device and directory, then the name with its NUL.
std::string BytesOf(const entry_ref& ref) {
    return BytesOf(&ref.device, sizeof ref.device) + BytesOf(&ref.directory, sizeof ref.directory) +
           BytesOf(ref.name.c_str(), static_cast<ssize_t>(ref.name.size() + 1));
}

template <typename Value>
Value FromBytes(const void* bytes) {
    Value value;
    memcpy(static_cast<void*>(&value), bytes, sizeof value);
    return value;
}

// Any byte but 0 is true, even one that is no bool of the compiler's.
template <>
bool FromBytes<bool>(const void* bytes) {
    return FromBytes<uint8>(bytes) != 0;
}

template <typename Value>
status_t FindFixed(const BMessage& message, const char* name, type_code type, int32 index,
                   Value* value) {
    const void* bytes;
    const status_t status =
        value ? message.FindData(name, type, index, &bytes, nullptr) : B_BAD_VALUE;
    if (status == B_OK)
        *value = FromBytes<Value>(bytes);
    return status;
}

} // namespace

const BMessage::Field* BMessage::FieldNamed(const char* name) const {
    const auto found = std::find_if(fFields.begin(), fFields.end(),
                                    [name](const Field& field) { return field.name == name; });
    return found == fFields.end() ? nullptr : &*found;
}

status_t BMessage::FindValue(const char* name, type_code type, int32 index,
                             const std::string** value) const {
    if (!name)
        return B_BAD_VALUE;
    const Field* field = FieldNamed(name);
    if (!field)
        return B_NAME_NOT_FOUND;
    if (type != B_ANY_TYPE && type != field->type)
        return B_BAD_TYPE;
    if (index < 0 || static_cast<size_t>(index) >= field->values.size())
        return B_BAD_INDEX;
    *value = &field->values[static_cast<size_t>(index)];
    return B_OK;
}

status_t BMessage::AddData(const char* name, type_code type, const void* data, ssize_t size, bool,
                           int32) {
    if (!name || !IsValue(type, data, size))
        return B_BAD_VALUE;
    auto* field = const_cast<Field*>(FieldNamed(name));
    if (field && field->type != type)
        return B_BAD_TYPE;
    if (!field)
        field = &fFields.emplace_back(Field{name, type, {}});
    field->values.push_back(BytesOf(data, size));
    return B_OK;
}

status_t BMessage::ReplaceData(const char* name, type_code type, const void* data, ssize_t size) {
    if (!IsValue(type, data, size))
        return B_BAD_VALUE;
    const std::string* value;
    const status_t status = FindValue(name, type, 0, &value);
    if (status == B_OK)
        *const_cast<std::string*>(value) = BytesOf(data, size);
    return status;
}

status_t BMessage::FindData(const char* name, type_code type, const void** data,
                            ssize_t* size) const {
    return FindData(name, type, 0, data, size);
}

status_t BMessage::FindData(const char* name, type_code type, int32 index, const void** data,
                            ssize_t* size) const {
    const std::string* bytes;
    const status_t status = data ? FindValue(name, type, index, &bytes) : B_BAD_VALUE;
    if (status != B_OK)
        return status;
    *data = bytes->data();
    if (size)
        *size = static_cast<ssize_t>(bytes->size());
    return B_OK;
}

bool BMessage::HasData(const char* name, type_code type) const {
    const std::string* bytes;
    return FindValue(name, type, 0, &bytes) == B_OK;
}

status_t BMessage::MakeEmpty() {
    fFields.clear();
    return B_OK;
}

// The functions of a type whose values have one size.
#define ADD_AND_FIND(Name, type, Argument, Result)                                                 \
    status_t BMessage::Add##Name(const char* name, Argument value) {                               \
        return AddData(name, type, &value, sizeof(value));                                         \
    }                                                                                              \
    status_t BMessage::Find##Name(const char* name, Result* value) const {                         \
        return FindFixed(*this, name, type, 0, value);                                             \
    }
#define ADD_FIND_AND_GET(Name, type, Value)                                                        \
    ADD_AND_FIND(Name, type, Value, Value)                                                         \
    Value BMessage::Get##Name(const char* name, Value otherwise) const {                           \
        Find##Name(name, &otherwise);                                                              \
        return otherwise;                                                                          \
    }

ADD_FIND_AND_GET(Bool, B_BOOL_TYPE, bool)
ADD_FIND_AND_GET(Int8, B_INT8_TYPE, int8)
ADD_FIND_AND_GET(Int32, B_INT32_TYPE, int32)
ADD_FIND_AND_GET(Int64, B_INT64_TYPE, int64)
ADD_FIND_AND_GET(Float, B_FLOAT_TYPE, float)
ADD_FIND_AND_GET(Point, B_POINT_TYPE, BPoint)
ADD_AND_FIND(Pointer, B_POINTER_TYPE, const void*, void*)

#undef ADD_FIND_AND_GET
#undef ADD_AND_FIND

status_t BMessage::FindInt32(const char* name, int32 index, int32* value) const {
    return FindFixed(*this, name, B_INT32_TYPE, index, value);
}

status_t BMessage::AddString(const char* name, const char* value) {
    return AddData(name, B_STRING_TYPE, value, value ? static_cast<ssize_t>(strlen(value) + 1) : 0);
}

status_t BMessage::FindString(const char* name, const char** value) const {
    const void* bytes;
    const status_t status = value ? FindData(name, B_STRING_TYPE, &bytes, nullptr) : B_BAD_VALUE;
    if (status == B_OK)
        *value = static_cast<const char*>(bytes);
    return status;
}

status_t BMessage::AddRef(const char* name, const entry_ref* value) {
    const std::string bytes = value ? BytesOf(*value) : std::string();
    return AddData(name, B_REF_TYPE, value ? bytes.data() : nullptr,
                   static_cast<ssize_t>(bytes.size()));
}

status_t BMessage::FindRef(const char* name, entry_ref* value) const {
    return FindRef(name, 0, value);
}

status_t BMessage::FindRef(const char* name, int32 index, entry_ref* value) const {
    const void* data;
    ssize_t size;
    const status_t status = value ? FindData(name, B_REF_TYPE, index, &data, &size) : B_BAD_VALUE;
    if (status != B_OK)
        return status;
    constexpr ssize_t kName = sizeof(value->device) + sizeof(value->directory);
    const char* bytes = static_cast<const char*>(data);
    if (size <= kName || bytes[size - 1] != '\0')
        return B_BAD_DATA;
    *value = entry_ref(FromBytes<int32>(bytes), FromBytes<int64>(bytes + sizeof(value->device)),
                       bytes + kName);
    return B_OK;
}

const char* BMessage::GetString(const char* name, const char* otherwise) const {
    FindString(name, &otherwise);
    return otherwise;
}

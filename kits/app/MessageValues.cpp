// The functions of BMessage that read and write values of one C++ type each.

#include <cstring>

#include "kits/app/Message.h"

namespace {

template <typename Value>
Value FromBytes(const void* bytes) {
    Value value;
    memcpy(static_cast<void*>(&value), bytes, sizeof(value));
    return value;
}

// Any byte but 0 is true, also those that are no bool of the compiler's.
template <>
bool FromBytes<bool>(const void* bytes) {
    return FromBytes<uint8>(bytes) != 0;
}

template <typename Value>
status_t FindFixed(const BMessage& message, const char* name, type_code type, int32 index,
                   Value* value) {
    if (!value)
        return B_BAD_VALUE;
    const void* bytes;
    const status_t status = message.FindData(name, type, index, &bytes, nullptr);
    if (status == B_OK)
        *value = FromBytes<Value>(bytes);
    return status;
}

// Device and directory, then the name with its NUL.
std::string BytesOf(const entry_ref& ref) {
    std::string bytes(reinterpret_cast<const char*>(&ref.device), sizeof(ref.device));
    bytes.append(reinterpret_cast<const char*>(&ref.directory), sizeof(ref.directory));
    return bytes.append(ref.name.c_str(), ref.name.size() + 1);
}

template <typename Value, typename Find>
Value Or(Value otherwise, Find find) {
    find(&otherwise);
    return otherwise;
}

} // namespace

// The forms of the functions that take the first value, and Has.
#define FIRST_VALUE_FUNCTIONS(Name, type, Argument, Result)                                        \
    status_t BMessage::Find##Name(const char* name, Result value) const {                          \
        return Find##Name(name, 0, value);                                                         \
    }                                                                                              \
    status_t BMessage::Replace##Name(const char* name, Argument value) {                           \
        return Replace##Name(name, 0, value);                                                      \
    }                                                                                              \
    bool BMessage::Has##Name(const char* name, int32 index) const {                                \
        return HasData(name, type, index);                                                         \
    }

// All functions of a type whose values have one size.
#define FIXED_SIZE_FUNCTIONS(Name, type, Argument, Result)                                         \
    FIRST_VALUE_FUNCTIONS(Name, type, Argument, Result)                                            \
    status_t BMessage::Add##Name(const char* name, Argument value) {                               \
        return AddData(name, type, &value, sizeof(value));                                         \
    }                                                                                              \
    status_t BMessage::Find##Name(const char* name, int32 index, Result value) const {             \
        return FindFixed(*this, name, type, index, value);                                         \
    }                                                                                              \
    status_t BMessage::Replace##Name(const char* name, int32 index, Argument value) {              \
        return ReplaceData(name, type, index, &value, sizeof(value));                              \
    }

FIXED_SIZE_FUNCTIONS(Bool, B_BOOL_TYPE, bool, bool*)
FIXED_SIZE_FUNCTIONS(Int8, B_INT8_TYPE, int8, int8*)
FIXED_SIZE_FUNCTIONS(Int16, B_INT16_TYPE, int16, int16*)
FIXED_SIZE_FUNCTIONS(Int32, B_INT32_TYPE, int32, int32*)
FIXED_SIZE_FUNCTIONS(Int64, B_INT64_TYPE, int64, int64*)
FIXED_SIZE_FUNCTIONS(Float, B_FLOAT_TYPE, float, float*)
FIXED_SIZE_FUNCTIONS(Double, B_DOUBLE_TYPE, double, double*)
FIXED_SIZE_FUNCTIONS(Point, B_POINT_TYPE, BPoint, BPoint*)
FIXED_SIZE_FUNCTIONS(Rect, B_RECT_TYPE, BRect, BRect*)
FIXED_SIZE_FUNCTIONS(Pointer, B_POINTER_TYPE, const void*, void**)

FIRST_VALUE_FUNCTIONS(String, B_STRING_TYPE, const char*, const char**)
FIRST_VALUE_FUNCTIONS(Ref, B_REF_TYPE, const entry_ref*, entry_ref*)
FIRST_VALUE_FUNCTIONS(Messenger, B_MESSENGER_TYPE, const BMessenger&, BMessenger*)
FIRST_VALUE_FUNCTIONS(Message, B_MESSAGE_TYPE, const BMessage*, BMessage*)

#undef FIXED_SIZE_FUNCTIONS
#undef FIRST_VALUE_FUNCTIONS

status_t BMessage::AddString(const char* name, const char* value) {
    return value ? AddData(name, B_STRING_TYPE, value, strlen(value) + 1) : B_BAD_VALUE;
}

status_t BMessage::AddString(const char* name, const BString& value) {
    return AddString(name, value.String());
}

status_t BMessage::ReplaceString(const char* name, int32 index, const char* value) {
    return value ? ReplaceData(name, B_STRING_TYPE, index, value, strlen(value) + 1) : B_BAD_VALUE;
}

status_t BMessage::FindString(const char* name, int32 index, const char** value) const {
    const void* bytes;
    const status_t status =
        value ? FindData(name, B_STRING_TYPE, index, &bytes, nullptr) : B_BAD_VALUE;
    if (status == B_OK)
        *value = static_cast<const char*>(bytes);
    return status;
}

status_t BMessage::FindString(const char* name, BString* value) const {
    return FindString(name, 0, value);
}

status_t BMessage::FindString(const char* name, int32 index, BString* value) const {
    const char* found;
    const status_t status = value ? FindString(name, index, &found) : B_BAD_VALUE;
    if (status == B_OK)
        value->SetTo(found);
    return status;
}

status_t BMessage::AddRef(const char* name, const entry_ref* value) {
    if (!value)
        return B_BAD_VALUE;
    const std::string bytes = BytesOf(*value);
    return AddData(name, B_REF_TYPE, bytes.data(), static_cast<ssize_t>(bytes.size()), false);
}

status_t BMessage::ReplaceRef(const char* name, int32 index, const entry_ref* value) {
    if (!value)
        return B_BAD_VALUE;
    const std::string bytes = BytesOf(*value);
    return ReplaceData(name, B_REF_TYPE, index, bytes.data(), static_cast<ssize_t>(bytes.size()));
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

bool BMessage::GetBool(const char* name, bool otherwise) const {
    return Or(otherwise, [&](bool* value) { FindBool(name, value); });
}

int8 BMessage::GetInt8(const char* name, int8 otherwise) const {
    return Or(otherwise, [&](int8* value) { FindInt8(name, value); });
}

int32 BMessage::GetInt32(const char* name, int32 otherwise) const {
    return Or(otherwise, [&](int32* value) { FindInt32(name, value); });
}

int64 BMessage::GetInt64(const char* name, int64 otherwise) const {
    return Or(otherwise, [&](int64* value) { FindInt64(name, value); });
}

float BMessage::GetFloat(const char* name, float otherwise) const {
    return Or(otherwise, [&](float* value) { FindFloat(name, value); });
}

const char* BMessage::GetString(const char* name, const char* otherwise) const {
    return Or(otherwise, [&](const char** value) { FindString(name, value); });
}

BPoint BMessage::GetPoint(const char* name, BPoint otherwise) const {
    return Or(otherwise, [&](BPoint* value) { FindPoint(name, value); });
}

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "base/EntryRef.h"
#include "base/Point.h"
#include "base/TypeConstants.h"
#include "kits/app/Messenger.h"

// A code and named fields. A field has one type and one or more values; fields keep the order in
// which they were added. A copy shares nothing with its original. One thread at a time.
//
// Results of the functions on fields:
// - B_NAME_NOT_FOUND: no field has this name;
// - B_BAD_TYPE: the field of this name has another type;
// - B_BAD_INDEX: the field has no value of this index;
// - B_BAD_VALUE: a null name or value, or a size that the type does not have.
// A failure changes neither the message nor the caller's variable.
class BMessage {
public:
    // The meaning of the message; sender and receiver agree on it.
    uint32 what = 0;

    BMessage() = default;
    explicit BMessage(uint32 what_)
        : what(what_) {}

    // Add a value behind those of the field, or a new field at the end.
    status_t AddBool(const char* name, bool value);
    status_t AddInt8(const char* name, int8 value);
    status_t AddInt32(const char* name, int32 value);
    status_t AddInt64(const char* name, int64 value);
    status_t AddFloat(const char* name, float value);
    status_t AddString(const char* name, const char* value);
    status_t AddPoint(const char* name, BPoint value);
    // Adds the address; the object behind it stays the caller's.
    status_t AddPointer(const char* name, const void* value);
    status_t AddRef(const char* name, const entry_ref* value);
    // Adds a copy of `size` bytes of any type but B_ANY_TYPE. `isFixedSize` and `count` are hints
    // of the platform's and change nothing.
    status_t AddData(const char* name, type_code type, const void* data, ssize_t size,
                     bool isFixedSize = true, int32 count = 1);

    // Read the first value of the field, or the value at `index`.
    status_t FindBool(const char* name, bool* value) const;
    status_t FindInt8(const char* name, int8* value) const;
    status_t FindInt32(const char* name, int32* value) const;
    status_t FindInt32(const char* name, int32 index, int32* value) const;
    status_t FindInt64(const char* name, int64* value) const;
    status_t FindFloat(const char* name, float* value) const;
    // The message's own bytes, valid until the field changes, with a NUL behind them.
    status_t FindString(const char* name, const char** value) const;
    status_t FindPoint(const char* name, BPoint* value) const;
    status_t FindPointer(const char* name, void** value) const;
    // B_BAD_DATA if the value was added as data and names no entry.
    status_t FindRef(const char* name, entry_ref* value) const;
    status_t FindRef(const char* name, int32 index, entry_ref* value) const;
    // The message's own bytes, valid until the field changes; those of a string count its NUL.
    // B_ANY_TYPE finds a field of any type. `size` may be null.
    status_t FindData(const char* name, type_code type, const void** data, ssize_t* size) const;
    status_t FindData(const char* name, type_code type, int32 index, const void** data,
                      ssize_t* size) const;

    // Return the first value, or `otherwise` if the message has no such field of this type.
    bool GetBool(const char* name, bool otherwise = false) const;
    int8 GetInt8(const char* name, int8 otherwise) const;
    int32 GetInt32(const char* name, int32 otherwise) const;
    int64 GetInt64(const char* name, int64 otherwise) const;
    float GetFloat(const char* name, float otherwise) const;
    const char* GetString(const char* name, const char* otherwise = nullptr) const;
    BPoint GetPoint(const char* name, BPoint otherwise) const;

    // Whether the field exists and has this type.
    bool HasInt32(const char* name) const { return HasData(name, B_INT32_TYPE); }
    bool HasInt64(const char* name) const { return HasData(name, B_INT64_TYPE); }
    bool HasPointer(const char* name) const { return HasData(name, B_POINTER_TYPE); }
    bool HasData(const char* name, type_code type) const;

    // Replaces the first value of a field that exists.
    status_t ReplaceData(const char* name, type_code type, const void* data, ssize_t size);

    // Removes all fields; `what` stays. Always B_OK.
    status_t MakeEmpty();

    // Whether it came from outside the program: through the instance socket or as a signal.
    bool IsSourceRemote() const { return fIsRemote; }
    // Whether the user dropped it.
    bool WasDropped() const { return fWasDropped; }
    // For the code that receives the message from outside. Every copy keeps both marks.
    void SetSourceRemote(bool isRemote) { fIsRemote = isRemote; }
    void SetWasDropped(bool wasDropped) { fWasDropped = wasDropped; }

    // Writes the code and the fields as UTF-8 text (docs/FORMATS.md), at most 1 MiB. Pointers mean
    // nothing outside this process: their fields are left out. B_BAD_VALUE if the text would be
    // longer; `text` then stays as it was.
    status_t Flatten(std::string* text) const;

    // Becomes the message that was flattened; the marks are cleared. B_BAD_DATA, and no change,
    // unless the text is exactly one well-formed message of at most 1 MiB, with nothing but white
    // space around it.
    status_t Unflatten(const void* text, size_t size);

private:
    friend class BLooper;

    // A value is the bytes of its type; those of a string include its NUL.
    struct Field {
        std::string name;
        type_code type;
        std::vector<std::string> values;
    };

    const Field* FieldNamed(const char* name) const;
    status_t FindValue(const char* name, type_code type, int32 index,
                       const std::string** value) const;

    std::vector<Field> fFields;
    int64 fTargetToken = 0;
    bool fIsRemote = false;
    bool fWasDropped = false;
};

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "base/EntryRef.h"
#include "base/Point.h"
#include "base/Rect.h"
#include "base/TypeConstants.h"
#include "kits/app/Messenger.h"
#include "kits/support/String.h"

class BDataIO;

// A code and named fields. A field has one type and one or more values; fields keep the order in
// which they were added. A copy shares nothing with its original. One thread at a time.
//
// Results of the functions on fields:
// - B_NAME_NOT_FOUND: no field of this name;
// - B_BAD_TYPE: the field of this name has another type;
// - B_BAD_INDEX: the field has no value of this index;
// - B_BAD_VALUE: a null name or value, or a size that the type does not have.
// Nothing is changed then, neither the message nor what a pointer of the caller's points to.
class BMessage {
public:
    // What it is about; free for the sender and receiver to agree on.
    uint32 what = 0;

    BMessage();
    explicit BMessage(uint32 what);
    BMessage(const BMessage& other);
    BMessage(BMessage&& other) noexcept;
    BMessage& operator=(const BMessage& other);
    BMessage& operator=(BMessage&& other) noexcept;
    ~BMessage();

    // Add a value behind those the field has, or a new field at the end.
    status_t AddBool(const char* name, bool value);
    status_t AddInt8(const char* name, int8 value);
    status_t AddInt16(const char* name, int16 value);
    status_t AddInt32(const char* name, int32 value);
    status_t AddInt64(const char* name, int64 value);
    status_t AddFloat(const char* name, float value);
    status_t AddDouble(const char* name, double value);
    status_t AddString(const char* name, const char* value);
    status_t AddString(const char* name, const BString& value);
    status_t AddPoint(const char* name, BPoint value);
    status_t AddRect(const char* name, BRect value);
    // The pointer itself; what it points to stays the caller's.
    status_t AddPointer(const char* name, const void* value);
    status_t AddRef(const char* name, const entry_ref* value);
    status_t AddMessenger(const char* name, const BMessenger& value);
    // A copy. B_BAD_VALUE also if messages would be nested more than 16 deep.
    status_t AddMessage(const char* name, const BMessage* value);
    // A copy of `size` bytes of any type but B_ANY_TYPE, B_MESSAGE_TYPE and B_MESSENGER_TYPE. If
    // the field's first value was added with `isFixedSize`, all its values have the same size; that
    // is not kept by Flatten(), and not asked of strings. `count` is how many values the caller
    // expects to add, a hint.
    status_t AddData(const char* name, type_code type, const void* data, ssize_t size,
                     bool isFixedSize = true, int32 count = 1);

    // Read the value of an index, or the first one.
    status_t FindBool(const char* name, bool* value) const;
    status_t FindBool(const char* name, int32 index, bool* value) const;
    status_t FindInt8(const char* name, int8* value) const;
    status_t FindInt8(const char* name, int32 index, int8* value) const;
    status_t FindInt16(const char* name, int16* value) const;
    status_t FindInt16(const char* name, int32 index, int16* value) const;
    status_t FindInt32(const char* name, int32* value) const;
    status_t FindInt32(const char* name, int32 index, int32* value) const;
    status_t FindInt64(const char* name, int64* value) const;
    status_t FindInt64(const char* name, int32 index, int64* value) const;
    status_t FindFloat(const char* name, float* value) const;
    status_t FindFloat(const char* name, int32 index, float* value) const;
    status_t FindDouble(const char* name, double* value) const;
    status_t FindDouble(const char* name, int32 index, double* value) const;
    // The message's own bytes, valid until the field changes; with a NUL behind them.
    status_t FindString(const char* name, const char** value) const;
    status_t FindString(const char* name, int32 index, const char** value) const;
    status_t FindString(const char* name, BString* value) const;
    status_t FindString(const char* name, int32 index, BString* value) const;
    status_t FindPoint(const char* name, BPoint* value) const;
    status_t FindPoint(const char* name, int32 index, BPoint* value) const;
    status_t FindRect(const char* name, BRect* value) const;
    status_t FindRect(const char* name, int32 index, BRect* value) const;
    status_t FindPointer(const char* name, void** value) const;
    status_t FindPointer(const char* name, int32 index, void** value) const;
    // B_BAD_DATA if the value was added as data and names no entry.
    status_t FindRef(const char* name, entry_ref* value) const;
    status_t FindRef(const char* name, int32 index, entry_ref* value) const;
    status_t FindMessenger(const char* name, BMessenger* value) const;
    status_t FindMessenger(const char* name, int32 index, BMessenger* value) const;
    status_t FindMessage(const char* name, BMessage* value) const;
    status_t FindMessage(const char* name, int32 index, BMessage* value) const;
    // The message's own bytes, valid until the field changes; those of a string count its NUL.
    // B_ANY_TYPE finds a field of any type whose values are bytes. `size` may be null.
    status_t FindData(const char* name, type_code type, const void** data, ssize_t* size) const;
    status_t FindData(const char* name, type_code type, int32 index, const void** data,
                      ssize_t* size) const;

    // The first value, or `otherwise` if there is none of this type.
    bool GetBool(const char* name, bool otherwise = false) const;
    int8 GetInt8(const char* name, int8 otherwise) const;
    int32 GetInt32(const char* name, int32 otherwise) const;
    int64 GetInt64(const char* name, int64 otherwise) const;
    float GetFloat(const char* name, float otherwise) const;
    const char* GetString(const char* name, const char* otherwise = nullptr) const;
    BPoint GetPoint(const char* name, BPoint otherwise) const;

    // Whether the field has a value of this type and index.
    bool HasBool(const char* name, int32 index = 0) const;
    bool HasInt8(const char* name, int32 index = 0) const;
    bool HasInt16(const char* name, int32 index = 0) const;
    bool HasInt32(const char* name, int32 index = 0) const;
    bool HasInt64(const char* name, int32 index = 0) const;
    bool HasFloat(const char* name, int32 index = 0) const;
    bool HasDouble(const char* name, int32 index = 0) const;
    bool HasString(const char* name, int32 index = 0) const;
    bool HasPoint(const char* name, int32 index = 0) const;
    bool HasRect(const char* name, int32 index = 0) const;
    bool HasPointer(const char* name, int32 index = 0) const;
    bool HasRef(const char* name, int32 index = 0) const;
    bool HasMessenger(const char* name, int32 index = 0) const;
    bool HasMessage(const char* name, int32 index = 0) const;
    bool HasData(const char* name, type_code type, int32 index = 0) const;

    // Put a value in the place of the one of an index, or of the first one.
    status_t ReplaceBool(const char* name, bool value);
    status_t ReplaceBool(const char* name, int32 index, bool value);
    status_t ReplaceInt8(const char* name, int8 value);
    status_t ReplaceInt8(const char* name, int32 index, int8 value);
    status_t ReplaceInt16(const char* name, int16 value);
    status_t ReplaceInt16(const char* name, int32 index, int16 value);
    status_t ReplaceInt32(const char* name, int32 value);
    status_t ReplaceInt32(const char* name, int32 index, int32 value);
    status_t ReplaceInt64(const char* name, int64 value);
    status_t ReplaceInt64(const char* name, int32 index, int64 value);
    status_t ReplaceFloat(const char* name, float value);
    status_t ReplaceFloat(const char* name, int32 index, float value);
    status_t ReplaceDouble(const char* name, double value);
    status_t ReplaceDouble(const char* name, int32 index, double value);
    status_t ReplaceString(const char* name, const char* value);
    status_t ReplaceString(const char* name, int32 index, const char* value);
    status_t ReplacePoint(const char* name, BPoint value);
    status_t ReplacePoint(const char* name, int32 index, BPoint value);
    status_t ReplaceRect(const char* name, BRect value);
    status_t ReplaceRect(const char* name, int32 index, BRect value);
    status_t ReplacePointer(const char* name, const void* value);
    status_t ReplacePointer(const char* name, int32 index, const void* value);
    status_t ReplaceRef(const char* name, const entry_ref* value);
    status_t ReplaceRef(const char* name, int32 index, const entry_ref* value);
    status_t ReplaceMessenger(const char* name, const BMessenger& value);
    status_t ReplaceMessenger(const char* name, int32 index, const BMessenger& value);
    status_t ReplaceMessage(const char* name, const BMessage* value);
    status_t ReplaceMessage(const char* name, int32 index, const BMessage* value);
    status_t ReplaceData(const char* name, type_code type, const void* data, ssize_t size);
    status_t ReplaceData(const char* name, type_code type, int32 index, const void* data,
                         ssize_t size);

    // Takes the whole field away.
    status_t RemoveName(const char* name);
    // Takes all fields away; `what` stays. Always B_OK.
    status_t MakeEmpty();
    bool IsEmpty() const;

    // How many fields have this type (B_ANY_TYPE: how many there are).
    int32 CountNames(type_code type) const;
    // Type and number of values of a field. Each pointer may be null.
    status_t GetInfo(const char* name, type_code* type, int32* count = nullptr) const;
    // The same for the field of an index among those of a type (B_ANY_TYPE: among all); the name is
    // the message's own. B_BAD_INDEX if there is none. Each pointer may be null.
    status_t GetInfo(type_code type, int32 index, const char** nameFound, type_code* typeFound,
                     int32* countFound = nullptr) const;

    // Whether it came from outside the program: through the instance socket or as a signal.
    bool IsSourceRemote() const { return fIsRemote; }
    // Whether it was dropped by the user.
    bool WasDropped() const { return fWasDropped; }
    // For whoever takes the message in. Both marks go with every copy, also a sent one.
    void SetSourceRemote(bool isRemote) { fIsRemote = isRemote; }
    void SetWasDropped(bool wasDropped) { fWasDropped = wasDropped; }
    // Where the sender wants an answer; without a target if it wants none.
    BMessenger ReturnAddress() const { return fReplyTo; }

    // Writes the code and the fields as UTF-8 text (docs/FORMATS.md), at most 1 MiB. Pointers and
    // messengers mean nothing outside this process: fields of these types are left out. B_BAD_VALUE
    // if it would be longer, else the stream's error; B_IO_ERROR if the stream takes no more.
    status_t Flatten(BDataIO* stream) const;
    status_t Flatten(std::string* text) const;

    // Becomes the message that was flattened; marks and return address are cleared. The stream is
    // read to its end, which must be the message's end but for white space. B_BAD_DATA if it is
    // anything but one whole, well-formed message of at most 1 MiB, or the stream's error; the
    // message then stays as it was.
    status_t Unflatten(BDataIO* stream);
    status_t Unflatten(const void* text, size_t size);

private:
    friend class BLooper;
    friend class BMessenger;
    friend class MessageText;

    struct Field;

    Field* FieldNamed(const char* name);
    status_t FindField(const char* name, type_code type, int32 index, const Field** found) const;
    template <typename Value>
    status_t AddValue(const char* name, type_code type, bool isFixedSize, Value value);
    template <typename Value>
    status_t FindValue(const char* name, type_code type, int32 index, const Value** value) const;
    template <typename Value>
    status_t ReplaceValue(const char* name, type_code type, int32 index, Value value);
    static bool HasRoomFor(const Field& field, ssize_t size);
    // How deep messages lie in it, itself counted.
    int32 Depth() const;

    std::vector<Field> fFields;
    BMessenger fReplyTo;
    int64 fTargetToken = 0;
    bool fIsRemote = false;
    bool fWasDropped = false;
};

#include "kits/app/MessageText.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_set>

#include <nlohmann/json.hpp>

#include "base/Color.h"
#include "base/Utf8.h"
#include "kits/app/MessageField.h"

using Json = nlohmann::ordered_json;

namespace {

struct NamedType {
    type_code code;
    const char* name;
};

// Types that are not here are written as their code.
constexpr NamedType kNamedTypes[] = {
    {B_BOOL_TYPE, "bool"},       {B_INT8_TYPE, "int8"},       {B_UINT8_TYPE, "uint8"},
    {B_INT16_TYPE, "int16"},     {B_INT32_TYPE, "int32"},     {B_UINT32_TYPE, "uint32"},
    {B_INT64_TYPE, "int64"},     {B_FLOAT_TYPE, "float"},     {B_DOUBLE_TYPE, "double"},
    {B_STRING_TYPE, "string"},   {B_POINT_TYPE, "point"},     {B_RECT_TYPE, "rect"},
    {B_RGB_COLOR_TYPE, "color"}, {B_MESSAGE_TYPE, "message"}, {B_RAW_TYPE, "raw"},
};

// Each message in a message adds the levels of its object, field list, field and value list;
// the innermost value may have one of its own.
constexpr size_t kMaxNesting = 4 * kMaxMessageDepth + 1;

Json HexOf(std::string_view bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes) {
        hex += kDigits[static_cast<uint8>(byte) >> 4];
        hex += kDigits[static_cast<uint8>(byte) & 15];
    }
    return {{"hex", hex}};
}

// {"hex": "68c3"}
bool BytesOfHex(const Json& json, std::string& bytes) {
    if (!json.is_object() || json.size() != 1 || !json.contains("hex") || !json["hex"].is_string())
        return false;
    const std::string& hex = json["hex"].get_ref<const std::string&>();
    if (hex.size() % 2 != 0)
        return false;
    for (size_t i = 0; i < hex.size(); i += 2) {
        uint8 byte = 0;
        if (std::from_chars(&hex[i], &hex[i] + 2, byte, 16).ptr != &hex[i] + 2)
            return false;
        bytes += static_cast<char>(byte);
    }
    return true;
}

// Text without a NUL, as a JSON string if it is one.
Json TextOf(std::string_view text) {
    return IsUtf8(text) ? Json(text) : HexOf(text);
}

bool BytesOfText(const Json& json, std::string& text) {
    if (json.is_string())
        text = json.get_ref<const std::string&>();
    else if (!BytesOfHex(json, text))
        return false;
    return text.find('\0') == std::string::npos;
}

// 'qbAs' as "qbAs" between `quotes`, a code with other bytes as a number.
Json CodeOf(uint32 code, const char* quotes) {
    std::string text = quotes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char byte = static_cast<char>(code >> shift);
        if (byte < 0x20 || byte > 0x7e)
            return code;
        text += byte;
    }
    return text + quotes;
}

bool ReadCode(const Json& json, std::string_view quotes, uint32& code) {
    if (json.is_number_unsigned()) {
        code = static_cast<uint32>(json.get<uint64>());
        return json.get<uint64>() <= UINT32_MAX;
    }
    if (!json.is_string())
        return false;
    std::string_view text = json.get_ref<const std::string&>();
    if (text.size() != 4 + 2 * quotes.size() || !text.starts_with(quotes) ||
        !text.ends_with(quotes))
        return false;
    code = 0;
    for (const char byte : text.substr(quotes.size(), 4))
        code = code << 8 | static_cast<uint8>(byte);
    return true;
}

Json TypeOf(type_code code) {
    for (const NamedType& type : kNamedTypes) {
        if (type.code == code)
            return type.name;
    }
    return CodeOf(code, "'");
}

bool ReadType(const Json& json, type_code& code) {
    for (const NamedType& type : kNamedTypes) {
        if (json == type.name) {
            code = type.code;
            return true;
        }
    }
    return ReadCode(json, "'", code) && code != B_ANY_TYPE && code != B_MESSENGER_TYPE &&
           code != B_POINTER_TYPE;
}

Json NumberOf(double value) {
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return value;
}

// The shortest decimal that reads back as this float: 0.1, not 0.10000000149011612.
Json NumberOf(float value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    double shortest = value;
    std::from_chars(digits, end, shortest);
    return NumberOf(static_cast<float>(shortest) == value ? shortest : value);
}

template <typename Number>
bool ReadNumber(const Json& json, Number& number) {
    double value;
    if (json.is_number())
        value = json.get<double>();
    else if (json == "nan")
        value = std::numeric_limits<double>::quiet_NaN();
    else if (json == "inf" || json == "-inf")
        value = json == "inf" ? HUGE_VAL : -HUGE_VAL;
    else
        return false;
    number = static_cast<Number>(value);
    // Not too large for the type.
    return std::isfinite(number) || !std::isfinite(value);
}

template <typename Integer>
bool ReadInteger(const Json& json, Integer& number) {
    if (!json.is_number_integer())
        return false;
    // What is not unsigned is negative.
    const bool isTooLarge =
        json.is_number_unsigned() &&
        json.get<uint64>() > static_cast<uint64>(std::numeric_limits<Integer>::max());
    if (isTooLarge || (!json.is_number_unsigned() &&
                       json.get<int64>() < static_cast<int64>(std::numeric_limits<Integer>::min())))
        return false;
    number = json.get<Integer>();
    return true;
}

template <typename Value>
Value FromBytes(const std::string& bytes) {
    Value value;
    memcpy(&value, bytes.data(), sizeof(value));
    return value;
}

template <typename Value>
std::string ToBytes(Value value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof(value));
}

Json FloatsOf(const std::string& bytes) {
    Json numbers = Json::array();
    for (size_t i = 0; i < bytes.size(); i += sizeof(float))
        numbers.push_back(NumberOf(FromBytes<float>(bytes.substr(i, sizeof(float)))));
    return numbers;
}

bool ReadFloats(const Json& json, size_t count, std::string& bytes) {
    if (!json.is_array() || json.size() != count)
        return false;
    for (const Json& number : json) {
        float value;
        if (!ReadNumber(number, value))
            return false;
        bytes += ToBytes(value);
    }
    return true;
}

Json ColorOf(const std::string& bytes) {
    if (bytes.size() != sizeof(rgb_color))
        return HexOf(bytes);
    Json channels = Json::array();
    for (const char byte : bytes)
        channels.push_back(static_cast<uint8>(byte));
    return channels;
}

bool ReadColor(const Json& json, std::string& bytes) {
    if (!json.is_array())
        return BytesOfHex(json, bytes);
    for (const Json& channel : json) {
        uint8 value;
        if (!ReadInteger(channel, value))
            return false;
        bytes += static_cast<char>(value);
    }
    return bytes.size() == sizeof(rgb_color);
}

// A string that does not end with its only NUL is written as all of its bytes.
Json StringOf(const std::string& bytes) {
    const bool isString = bytes.find('\0') == bytes.size() - 1 && !bytes.empty();
    const std::string_view text(bytes.data(), bytes.size() - isString);
    return isString && IsUtf8(text) ? Json(text) : HexOf(bytes);
}

bool ReadString(const Json& json, std::string& bytes) {
    if (!json.is_string())
        return BytesOfHex(json, bytes);
    bytes = json.get_ref<const std::string&>();
    const bool isString = bytes.find('\0') == std::string::npos;
    bytes += '\0';
    return isString;
}

Json ValueOf(type_code type, const std::string& bytes) {
    switch (type) {
    case B_BOOL_TYPE:
        return bytes[0] != 0;
    case B_INT8_TYPE:
        return FromBytes<int8>(bytes);
    case B_UINT8_TYPE:
        return bytes.size() == 1 ? Json(FromBytes<uint8>(bytes)) : HexOf(bytes);
    case B_INT16_TYPE:
        return FromBytes<int16>(bytes);
    case B_INT32_TYPE:
        return FromBytes<int32>(bytes);
    case B_UINT32_TYPE:
        return FromBytes<uint32>(bytes);
    case B_INT64_TYPE:
        return FromBytes<int64>(bytes);
    case B_FLOAT_TYPE:
        return NumberOf(FromBytes<float>(bytes));
    case B_DOUBLE_TYPE:
        return NumberOf(FromBytes<double>(bytes));
    case B_POINT_TYPE:
    case B_RECT_TYPE:
        return FloatsOf(bytes);
    case B_RGB_COLOR_TYPE:
        return ColorOf(bytes);
    case B_STRING_TYPE:
        return StringOf(bytes);
    default:
        return HexOf(bytes);
    }
}

template <typename Value>
bool ReadScalar(bool (*read)(const Json&, Value&), const Json& json, std::string& bytes) {
    Value value;
    if (!read(json, value))
        return false;
    bytes = ToBytes(value);
    return true;
}

bool ReadBool(const Json& json, bool& value) {
    if (!json.is_boolean())
        return false;
    value = json.get<bool>();
    return true;
}

bool ReadValue(type_code type, const Json& json, std::string& bytes) {
    switch (type) {
    case B_BOOL_TYPE:
        return ReadScalar(ReadBool, json, bytes);
    case B_INT8_TYPE:
        return ReadScalar(ReadInteger<int8>, json, bytes);
    case B_UINT8_TYPE:
        return json.is_object() ? BytesOfHex(json, bytes)
                                : ReadScalar(ReadInteger<uint8>, json, bytes);
    case B_INT16_TYPE:
        return ReadScalar(ReadInteger<int16>, json, bytes);
    case B_INT32_TYPE:
        return ReadScalar(ReadInteger<int32>, json, bytes);
    case B_UINT32_TYPE:
        return ReadScalar(ReadInteger<uint32>, json, bytes);
    case B_INT64_TYPE:
        return ReadScalar(ReadInteger<int64>, json, bytes);
    case B_FLOAT_TYPE:
        return ReadScalar(ReadNumber<float>, json, bytes);
    case B_DOUBLE_TYPE:
        return ReadScalar(ReadNumber<double>, json, bytes);
    case B_POINT_TYPE:
        return ReadFloats(json, 2, bytes);
    case B_RECT_TYPE:
        return ReadFloats(json, 4, bytes);
    case B_RGB_COLOR_TYPE:
        return ReadColor(json, bytes);
    case B_STRING_TYPE:
        return ReadString(json, bytes);
    default:
        return BytesOfHex(json, bytes);
    }
}

bool IsWritten(type_code type) {
    return type != B_POINTER_TYPE && type != B_MESSENGER_TYPE;
}

// Reads JSON without keeping it, and stops where it nests too deep or where an object has two
// members of one name.
class Inspector : public nlohmann::json_sax<Json> {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return false; }
    bool start_object(size_t) override { return Enter(); }
    bool key(string_t& name) override { return fNames.back().insert(name).second; }
    bool end_object() override { return Leave(); }
    bool start_array(size_t) override { return Enter(); }
    bool end_array() override { return Leave(); }
    bool parse_error(size_t, const std::string&, const Json::exception&) override { return false; }

private:
    bool Enter() {
        fNames.emplace_back();
        return fNames.size() <= kMaxNesting;
    }
    bool Leave() {
        fNames.pop_back();
        return true;
    }

    // Of the members of each open object.
    std::vector<std::unordered_set<std::string>> fNames;
};

// Discarded if it is not JSON as we take it. The parser takes a NUL for the end of the text.
Json Parse(std::string_view text) {
    Inspector inspector;
    if (text.find('\0') != std::string_view::npos || !Json::sax_parse(text, &inspector))
        return Json(Json::value_t::discarded);
    return Json::parse(text, nullptr, false);
}

bool HasMembers(const Json& json, std::initializer_list<const char*> names) {
    return json.is_object() && json.size() == names.size() &&
           std::all_of(names.begin(), names.end(),
                       [&](const char* name) { return json.contains(name); });
}

} // namespace

// Writes the fields of a message as JSON values.
class MessageText::Writer {
public:
    static Json FieldsOf(const BMessage& message) {
        Json fields = Json::array();
        for (const BMessage::Field& field : message.fFields) {
            if (IsWritten(field.type))
                fields.push_back(FieldOf(field));
        }
        return fields;
    }

private:
    static Json FieldOf(const BMessage::Field& field) {
        Json values = Json::array();
        for (const BMessage::Field::Value& value : field.values) {
            if (const auto* bytes = std::get_if<std::string>(&value))
                values.push_back(ValueOf(field.type, *bytes));
            else if (const auto* message = std::get_if<std::shared_ptr<const BMessage>>(&value))
                values.push_back(MessageOf(**message));
        }
        return {{"name", TextOf(field.name)}, {"type", TypeOf(field.type)}, {"values", values}};
    }

    static Json MessageOf(const BMessage& message) {
        return {{"what", CodeOf(message.what, "")}, {"fields", FieldsOf(message)}};
    }
};

bool MessageText::Write(const BMessage& message, std::string& text) {
    // One line for each field: a person reads it, and differences show.
    text = "{\n    \"what\": " + CodeOf(message.what, "").dump() + ",\n    \"fields\": [";
    const char* separator = "\n        ";
    for (const Json& field : Writer::FieldsOf(message)) {
        text += separator + field.dump();
        separator = ",\n        ";
    }
    text += "\n    ]\n}\n";
    return text.size() <= kMaxSize;
}

// Makes messages of JSON values.
class MessageText::Reader {
public:
    static bool ReadMessage(const Json& json, BMessage& message) {
        if (!HasMembers(json, {"what", "fields"}) || !ReadCode(json["what"], "", message.what) ||
            !json["fields"].is_array())
            return false;
        std::unordered_set<std::string> names;
        for (const Json& field : json["fields"]) {
            message.fFields.push_back({});
            if (!ReadField(field, message.fFields.back()) ||
                !names.insert(message.fFields.back().name).second)
                return false;
        }
        return true;
    }

private:
    static bool ReadField(const Json& json, BMessage::Field& field) {
        if (!HasMembers(json, {"name", "type", "values"}) ||
            !BytesOfText(json["name"], field.name) || !ReadType(json["type"], field.type))
            return false;
        const Json& values = json["values"];
        field.isFixedSize = SizeOfType(field.type) > 0;
        field.values.resize(values.is_array() ? values.size() : 0);
        for (size_t i = 0; i < field.values.size(); ++i) {
            if (!ReadFieldValue(field.type, values[i], field.values[i]))
                return false;
        }
        return !field.values.empty();
    }

    static bool ReadFieldValue(type_code type, const Json& json, BMessage::Field::Value& value) {
        if (type != B_MESSAGE_TYPE)
            return ReadValue(type, json, std::get<std::string>(value));
        auto message = std::make_shared<BMessage>();
        const bool isRead = ReadMessage(json, *message);
        value = std::move(message);
        return isRead;
    }
};

bool MessageText::Read(std::string_view text, BMessage& message) {
    return text.size() <= kMaxSize && Reader::ReadMessage(Parse(text), message);
}

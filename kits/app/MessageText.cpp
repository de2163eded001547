#include "kits/app/MessageText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/Color.h"
#include "base/Utf8.h"
#include "kits/app/Message.h"

using Json = nlohmann::ordered_json;

namespace {

constexpr size_t kMaxSize = 1 << 20;

// The message, its field list, a field, its value list, a value.
constexpr int kMaxNesting = 5;

Json HexOf(const std::string& bytes) {
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
Json TextOf(const std::string& text) {
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

// A float is written as the shortest decimal that reads back as it: 0.1, not 0.10000000149011612.
double Shortest(float value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    double shortest = value;
    std::from_chars(digits, end, shortest);
    return static_cast<float>(shortest) == value ? shortest : value;
}

double Shortest(double value) {
    return value;
}

template <typename Number>
Json WriteNumber(const std::string& bytes) {
    const auto value = FromBytes<Number>(bytes);
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return Shortest(value);
}

template <typename Number>
bool ReadNumber(const Json& json, std::string& bytes) {
    double value;
    if (json.is_number())
        value = json.get<double>();
    else if (json == "nan")
        value = std::numeric_limits<double>::quiet_NaN();
    else if (json == "inf" || json == "-inf")
        value = json == "inf" ? HUGE_VAL : -HUGE_VAL;
    else
        return false;
    const auto number = static_cast<Number>(value);
    bytes = ToBytes(number);
    // Not too large for the type.
    return std::isfinite(number) || !std::isfinite(value);
}

template <typename Integer>
Json WriteInteger(const std::string& bytes) {
    return FromBytes<Integer>(bytes);
}

template <typename Integer>
bool ReadInteger(const Json& json, std::string& bytes) {
    if (!json.is_number_integer())
        return false;
    bytes = ToBytes(json.get<Integer>());
    // What is not unsigned is negative.
    return json.is_number_unsigned() ? std::in_range<Integer>(json.get<uint64>())
                                     : std::in_range<Integer>(json.get<int64>());
}

Json WriteBool(const std::string& bytes) {
    return bytes[0] != 0;
}

bool ReadBool(const Json& json, std::string& bytes) {
    bytes = ToBytes(json == true);
    return json.is_boolean();
}

// A value may be several bytes: the keys that are held.
Json WriteByte(const std::string& bytes) {
    return bytes.size() == 1 ? WriteInteger<uint8>(bytes) : HexOf(bytes);
}

bool ReadByte(const Json& json, std::string& bytes) {
    return json.is_object() ? BytesOfHex(json, bytes) : ReadInteger<uint8>(json, bytes);
}

Json WriteFloats(const std::string& bytes) {
    Json numbers = Json::array();
    for (size_t i = 0; i < bytes.size(); i += sizeof(float))
        numbers.push_back(WriteNumber<float>(bytes.substr(i, sizeof(float))));
    return numbers;
}

template <size_t count>
bool ReadFloats(const Json& json, std::string& bytes) {
    if (!json.is_array() || json.size() != count)
        return false;
    for (const Json& number : json) {
        std::string value;
        if (!ReadNumber<float>(number, value))
            return false;
        bytes += value;
    }
    return true;
}

Json WriteColor(const std::string& bytes) {
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
        std::string value;
        if (!ReadInteger<uint8>(channel, value))
            return false;
        bytes += value;
    }
    return bytes.size() == sizeof(rgb_color);
}

// A string that does not end with its only NUL is written as all of its bytes.
Json WriteString(const std::string& bytes) {
    const bool isString = !bytes.empty() && bytes.find('\0') == bytes.size() - 1;
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

struct Type {
    type_code code;
    const char* name;
    size_t size; // of every value, or 0
    Json (*write)(const std::string& bytes);
    bool (*read)(const Json& json, std::string& bytes); // into an empty string
};

constexpr Type kTypes[] = {
    {B_BOOL_TYPE, "bool", 1, WriteBool, ReadBool},
    {B_INT8_TYPE, "int8", 1, WriteInteger<int8>, ReadInteger<int8>},
    {B_UINT8_TYPE, "uint8", 0, WriteByte, ReadByte},
    {B_INT16_TYPE, "int16", 2, WriteInteger<int16>, ReadInteger<int16>},
    {B_INT32_TYPE, "int32", 4, WriteInteger<int32>, ReadInteger<int32>},
    {B_UINT32_TYPE, "uint32", 4, WriteInteger<uint32>, ReadInteger<uint32>},
    {B_INT64_TYPE, "int64", 8, WriteInteger<int64>, ReadInteger<int64>},
    {B_FLOAT_TYPE, "float", 4, WriteNumber<float>, ReadNumber<float>},
    {B_DOUBLE_TYPE, "double", 8, WriteNumber<double>, ReadNumber<double>},
    {B_STRING_TYPE, "string", 0, WriteString, ReadString},
    {B_POINT_TYPE, "point", 8, WriteFloats, ReadFloats<2>},
    {B_RECT_TYPE, "rect", 16, WriteFloats, ReadFloats<4>},
    {B_RGB_COLOR_TYPE, "color", 0, WriteColor, ReadColor},
    {B_RAW_TYPE, "raw", 0, HexOf, BytesOfHex},
};

// Any other type: it is named by its code.
constexpr Type kOtherType{0, nullptr, 0, HexOf, BytesOfHex};

const Type& TypeWith(type_code code) {
    const auto found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [code](const Type& type) { return type.code == code; });
    return found == std::end(kTypes) ? kOtherType : *found;
}

bool ReadTypeCode(const Json& json, type_code& code) {
    for (const Type& type : kTypes) {
        if (json == type.name) {
            code = type.code;
            return true;
        }
    }
    return ReadCode(json, "'", code) && code != B_ANY_TYPE && code != B_POINTER_TYPE;
}

Json FieldOf(const std::string& name, type_code code, const std::vector<std::string>& values) {
    const Type& type = TypeWith(code);
    Json written = Json::array();
    for (const std::string& bytes : values)
        written.push_back(type.write(bytes));
    return {{"name", TextOf(name)},
            {"type", type.name ? Json(type.name) : CodeOf(code, "'")},
            {"values", std::move(written)}};
}

bool HasMembers(const Json& json, std::initializer_list<const char*> names) {
    return json.is_object() && json.size() == names.size() &&
           std::all_of(names.begin(), names.end(),
                       [&](const char* name) { return json.contains(name); });
}

bool ReadField(const Json& json, std::string& name, type_code& code,
               std::vector<std::string>& values) {
    if (!HasMembers(json, {"name", "type", "values"}) || !BytesOfText(json["name"], name) ||
        !ReadTypeCode(json["type"], code) || !json["values"].is_array())
        return false;
    const Type& type = TypeWith(code);
    for (const Json& value : json["values"]) {
        if (!type.read(value, values.emplace_back()))
            return false;
    }
    return !values.empty();
}

// Discarded if it is not JSON, nests deeper than a message can, or has an object with two members
// of one name. The parser would take a NUL for the end of the text.
Json Parse(std::string_view text) {
    std::vector<std::set<std::string>> names(kMaxNesting + 1); // of the members, by nesting
    bool isFine = text.find('\0') == std::string_view::npos;
    const auto check = [&](int nesting, Json::parse_event_t event, Json& parsed) {
        if (nesting > kMaxNesting)
            isFine = false;
        else if (event == Json::parse_event_t::object_start)
            names[static_cast<size_t>(nesting)].clear();
        else if (event == Json::parse_event_t::key)
            isFine &= names[static_cast<size_t>(nesting - 1)].insert(parsed).second;
        return isFine;
    };
    Json json = Json::parse(text, check, false);
    return isFine ? json : Json(Json::value_t::discarded);
}

} // namespace

size_t SizeOfType(type_code type) {
    return type == B_POINTER_TYPE ? sizeof(void*) : TypeWith(type).size;
}

// One line for each field: a person reads it, and differences show.
status_t BMessage::Flatten(std::string* text) const {
    std::string written = "{\n    \"what\": " + CodeOf(what, "").dump() + ",\n    \"fields\": [";
    const char* separator = "\n        ";
    for (const Field& field : fFields) {
        if (field.type == B_POINTER_TYPE)
            continue;
        written += separator + FieldOf(field.name, field.type, field.values).dump();
        separator = ",\n        ";
    }
    written += "\n    ]\n}\n";
    if (!text || written.size() > kMaxSize)
        return B_BAD_VALUE;
    *text = std::move(written);
    return B_OK;
}

status_t BMessage::Unflatten(const void* text, size_t size) {
    if (!text)
        return B_BAD_VALUE;
    if (size > kMaxSize)
        return B_BAD_DATA;
    BMessage message;
    const Json json = Parse({static_cast<const char*>(text), size});
    if (!HasMembers(json, {"what", "fields"}) || !ReadCode(json["what"], "", message.what) ||
        !json["fields"].is_array())
        return B_BAD_DATA;
    std::set<std::string> names;
    for (const Json& part : json["fields"]) {
        Field& field = message.fFields.emplace_back();
        if (!ReadField(part, field.name, field.type, field.values) ||
            !names.insert(field.name).second)
            return B_BAD_DATA;
    }
    *this = std::move(message);
    return B_OK;
}

// Messages of other types than was asked for, and their text, which comes from files and sockets.

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "base/Rect.h"
#include "kits/app/Message.h"

namespace {

std::string Flattened(const BMessage& message) {
    std::string text;
    EXPECT_EQ(B_OK, message.Flatten(&text));
    return text;
}

status_t Read(const std::string& text, BMessage& message) {
    return message.Unflatten(text.data(), text.size());
}

// Reads the message back from its text, which must be written the same way again.
BMessage RoundTrip(const BMessage& message) {
    BMessage read;
    const std::string text = Flattened(message);
    EXPECT_EQ(B_OK, Read(text, read)) << text;
    EXPECT_EQ(text, Flattened(read));
    return read;
}

std::string WithField(const std::string& field) {
    return R"({"what": 0, "fields": [)" + field + "]}";
}

std::string WithValue(const std::string& type, const std::string& value) {
    return WithField(R"({"name": "n", "type": ")" + type + R"(", "values": [)" + value + "]}");
}

BMessage Sample() {
    BMessage message('qbAs');
    message.AddInt32("browser", 1);
    message.AddPoint("pos", BPoint(30, 0.1f));
    message.AddData("color", B_RGB_COLOR_TYPE, "\xd8\xd8\xd8\0", 4);
    message.AddString("name", "a \"quoted\" \\ line\n\xe2\x82\xac");
    message.AddData("code", 1, "x", 1);
    return message;
}

using Values = std::vector<std::string>;

// The bytes of all values of a field.
Values ValuesOf(const BMessage& message, const char* name) {
    Values values;
    const void* data;
    ssize_t size;
    for (int32 i = 0; message.FindData(name, B_ANY_TYPE, i, &data, &size) == B_OK; ++i)
        values.emplace_back(static_cast<const char*>(data), size);
    return values;
}

TEST(MessageText, IsReadable) {
    EXPECT_EQ(R"({
    "what": "qbAs",
    "fields": [
        {"name":"browser","type":"int32","values":[1]},
        {"name":"pos","type":"point","values":[[30.0,0.1]]},
        {"name":"color","type":"color","values":[[216,216,216,0]]},
        {"name":"name","type":"string","values":["a \"quoted\" \\ line\n€"]},
        {"name":"code","type":1,"values":[{"hex":"78"}]}
    ]
}
)",
              Flattened(Sample()));
}

TEST(MessageText, KeepsBytesAndFloatsExactlyAndNoPointers) {
    BMessage message;
    const Values strings = {"\xff\xfe", "\xed\xa0\x80", "\xf0\x9f\x98\x80 and \xc3\xa9",
                            "\x01\x1f\x7f/", std::string("a\0b\0", 4)};
    for (const std::string& string : strings)
        message.AddData("strings", B_STRING_TYPE, string.data(),
                        static_cast<ssize_t>(string.size()));
    message.AddString("\x80", "its name is no text");
    message.AddData("odd colour", B_RGB_COLOR_TYPE, "abc", 3);
    message.AddData("keys", B_UINT8_TYPE, "0123456789abcdef", 16);
    std::mt19937 random(20);
    for (int i = 0; i < 5000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<uint32>(random()));
        if (!std::isnan(value))
            message.AddFloat("floats", value);
    }
    for (const float value : {-0.0f, FLT_MAX, FLT_TRUE_MIN, -INFINITY})
        message.AddFloat("floats", value);
    const BRect rect(1, 2, -1e-20f, 4);
    message.AddData("rects", B_RECT_TYPE, &rect, sizeof rect);
    for (const int64 value : {INT64_MIN, INT64_MAX})
        message.AddInt64("longs", value);
    BMessage read = RoundTrip(message);
    EXPECT_EQ(strings, ValuesOf(read, "strings"));
    for (const char* name : {"\x80", "odd colour", "keys", "floats", "rects", "longs"})
        EXPECT_EQ(ValuesOf(message, name), ValuesOf(read, name)) << name;
    read.AddFloat("nan", NAN);
    read.AddPointer("pointer", &read);
    read = RoundTrip(read);
    EXPECT_TRUE(std::isnan(read.GetFloat("nan", 0)));
    EXPECT_FALSE(read.HasPointer("pointer"));
}

TEST(MessageText, TakesNothingButOneWholeMessage) {
    const std::string text = Flattened(Sample());
    BMessage message('kept');
    message.AddInt32("n", 3);
    const size_t end = text.rfind('}') + 1;
    for (size_t length = 0; length < end; ++length)
        ASSERT_EQ(B_BAD_DATA, Read(text.substr(0, length), message)) << length;
    for (const char* tail : {"{}", "x", ",", "]", "}", "0"})
        EXPECT_EQ(B_BAD_DATA, Read(text + tail, message)) << tail;
    EXPECT_EQ(B_BAD_DATA, Read(text + std::string(1, '\0'), message));
    EXPECT_EQ('kept', message.what);
    EXPECT_EQ(3, message.GetInt32("n", 0));
    EXPECT_EQ(B_OK, Read(" \n" + text + "\r\n\t ", message));
    EXPECT_EQ(text, Flattened(message));
}

TEST(MessageText, RefusesWhatIsNotWellFormed) {
    const std::string texts[] = {
        "",
        R"({"fields": []})",
        R"({"what": 4294967296, "fields": []})",
        R"({"what": 0, "fields": [], "more": 1})",
        WithField("1"),
        WithField(R"({"name": "n", "type": "int32", "values": []})"),
        WithField(R"({"name": "a\u0000b", "type": "int32", "values": [1]})"),
        WithField(R"({"name": "n", "name": "n", "type": "int32", "values": [1]})"),
        WithField(R"({"name": "n", "type": "int32", "values": [1]},
                     {"name": "n", "type": "bool", "values": [true]})"),
        WithValue("int33", "1"),
        WithValue("'PNTR'", R"({"hex":"0000000000000000"})"),
        WithValue("bool", "1"),
        WithValue("int32", "2147483648"),
        WithValue("uint8", "-1"),
        WithValue("float", "1e39"),
        WithValue("string", R"("a\u0000b")"),
        WithValue("string", "\"\xff\""),
        WithValue("string", R"({"hex": "abc"})"),
        WithValue("raw", R"({"hex": "+1"})"),
        WithValue("point", "[1, 2, 3]"),
        WithValue("color", "[1, 2, 3, 256]"),
    };
    for (const std::string& text : texts) {
        BMessage message;
        EXPECT_EQ(B_BAD_DATA, Read(text, message)) << text;
    }
}

TEST(MessageText, BoundsDepthAndSize) {
    const auto repeated = [](const std::string& text) {
        std::string result;
        for (int i = 0; i < 100'000; ++i)
            result += text;
        return result;
    };
    BMessage message;
    EXPECT_EQ(B_BAD_DATA, Read(repeated("[{\"a\":"), message));
    EXPECT_EQ(B_BAD_DATA, Read(repeated("[") + repeated("]"), message));
    // Brackets in text are no depth.
    EXPECT_EQ(B_OK, Read(WithValue("string", "\"\\\\" + repeated("[\\\"") + "\""), message));

    const std::string text = Flattened(Sample());
    const std::string largest = text + std::string((1 << 20) - text.size(), ' ');
    EXPECT_EQ(B_OK, Read(largest, message));
    EXPECT_EQ(B_BAD_DATA, Read(largest + " ", message));
    message.AddString("s", std::string(1 << 20, 'x').c_str());
    std::string kept = "kept";
    EXPECT_EQ(B_BAD_VALUE, message.Flatten(&kept));
    EXPECT_EQ("kept", kept);
}

} // namespace

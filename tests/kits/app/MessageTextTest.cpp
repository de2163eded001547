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

// The message that comes back, which must be written the same way.
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
    return WithField(R"({"name": "n", "type": )" + type + R"(, "values": [)" + value + "]}");
}

template <typename Value>
void AddBytes(BMessage& message, const char* name, type_code type, Value value) {
    message.AddData(name, type, &value, sizeof value);
}

BMessage OneOfEach() {
    BMessage message('qbAs');
    message.AddBool("bool", true);
    message.AddInt8("int8", INT8_MIN);
    AddBytes(message, "int16", B_INT16_TYPE, int16{-2});
    message.AddInt32("int32", INT32_MIN);
    message.AddInt32("int32", INT32_MAX);
    message.AddInt64("int64", INT64_MIN);
    message.AddInt64("int64", INT64_MAX);
    message.AddFloat("float", 0.1f);
    AddBytes(message, "double", B_DOUBLE_TYPE, 0.1);
    message.AddString("string", "a \"quoted\" \\ line\n\xe2\x82\xac");
    message.AddPoint("point", BPoint(30.5f, -1e-20f));
    AddBytes(message, "rect", B_RECT_TYPE, BRect(1, 2, 3, 4));
    message.AddData("color", B_RGB_COLOR_TYPE, "\xd8\xd8\xd8\0", 4);
    message.AddData("raw", B_RAW_TYPE, "\0\xff\x10", 3, false);
    message.AddData("mime", B_MIME_TYPE, "x", 1, false);
    message.AddData("code", 1, "x", 1, false);
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
    BMessage message;
    message.AddInt32("browser", 1);
    message.AddPoint("pos", BPoint(30, 0.1f));
    message.AddData("color", B_RGB_COLOR_TYPE, "\xd8\xd8\xd8\0", 4);
    EXPECT_EQ(R"({
    "what": 0,
    "fields": [
        {"name":"browser","type":"int32","values":[1]},
        {"name":"pos","type":"point","values":[[30.0,0.1]]},
        {"name":"color","type":"color","values":[[216,216,216,0]]}
    ]
}
)",
              Flattened(message));
}

TEST(MessageText, KeepsBytesThatAreNoText) {
    for (const char* string :
         {"\xff\xfe", "\xc0\xaf", "\xed\xa0\x80", "\xf0\x9f\x98", "\xf4\x90\x80\x80",
          "\xf0\x9f\x98\x80 and \xc3\xa9", "", "\x01\x1f\x7f/", "\x80"}) {
        BMessage message;
        message.AddString(string, string);
        EXPECT_STREQ(string, RoundTrip(message).GetString(string, "lost"));
    }
    BMessage message;
    const Values strings = {"abc", std::string("a\0b\0", 4), ""};
    for (const std::string& string : strings)
        message.AddData("strings", B_STRING_TYPE, string.data(),
                        static_cast<ssize_t>(string.size()));
    message.AddData("odd colour", B_RGB_COLOR_TYPE, "abc", 3);
    EXPECT_EQ(B_OK, message.AddData("keys", B_UINT8_TYPE, "0123456789abcdef", 16));
    const BMessage read = RoundTrip(message);
    EXPECT_EQ(strings, ValuesOf(read, "strings"));
    EXPECT_EQ(Values{"abc"}, ValuesOf(read, "odd colour"));
    EXPECT_EQ(Values{"0123456789abcdef"}, ValuesOf(read, "keys"));
}

TEST(MessageText, KeepsFloatsExactly) {
    BMessage message;
    for (const float value : {-0.0f, FLT_MAX, -FLT_MAX, FLT_MIN, FLT_TRUE_MIN, INFINITY, -INFINITY})
        message.AddFloat("f", value);
    std::mt19937 random(20);
    for (int i = 0; i < 5000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<uint32>(random()));
        if (!std::isnan(value))
            message.AddFloat("f", value);
    }
    for (const double value : {DBL_MAX, DBL_TRUE_MIN, 0.1 + 0.2})
        AddBytes(message, "d", B_DOUBLE_TYPE, value);
    for (const char* name : {"f", "d"})
        EXPECT_EQ(ValuesOf(message, name), ValuesOf(RoundTrip(message), name));
    message.AddFloat("nan", NAN);
    EXPECT_TRUE(std::isnan(RoundTrip(message).GetFloat("nan", 0)));
}

TEST(MessageText, LeavesOutWhatMeansNothingElsewhere) {
    BMessage message;
    message.AddPointer("pointer", &message);
    EXPECT_FALSE(RoundTrip(message).HasPointer("pointer"));
    BMessage read;
    EXPECT_EQ(B_BAD_DATA, Read(WithValue(R"("'PNTR'")", R"({"hex":"0000000000000000"})"), read));
}

TEST(MessageText, TakesNothingButOneWholeMessage) {
    const std::string text = Flattened(OneOfEach());
    BMessage message('kept');
    message.AddInt32("n", 3);
    message.SetSourceRemote(true);
    const size_t end = text.rfind('}') + 1;
    for (size_t length = 0; length < end; ++length)
        ASSERT_EQ(B_BAD_DATA, Read(text.substr(0, length), message)) << length;
    for (const char* tail : {"{}", "x", ",", "]", "}", "0"})
        EXPECT_EQ(B_BAD_DATA, Read(text + tail, message)) << tail;
    EXPECT_EQ(B_BAD_DATA, Read(text + std::string(1, '\0'), message));
    EXPECT_EQ('kept', message.what);
    EXPECT_EQ(3, message.GetInt32("n", 0));
    EXPECT_TRUE(message.IsSourceRemote());
    EXPECT_EQ(B_OK, Read(" \n" + text + "\r\n\t ", message));
    EXPECT_EQ('qbAs', message.what);
    EXPECT_EQ(text, Flattened(message));
    EXPECT_FALSE(message.IsSourceRemote());
}

TEST(MessageText, RefusesWhatIsNotWellFormed) {
    const std::string texts[] = {
        "",
        "null",
        R"({"fields": []})",
        R"({"what": 4294967296, "fields": []})",
        R"({"what": 0, "what": 0, "fields": []})",
        R"({"what": 0, "fields": [], "more": 1})",
        R"({"what": 0, "fields": {}})",
        WithField("1"),
        WithField(R"({"name": "n", "type": "int32", "values": []})"),
        WithField(R"({"name": "n", "type": "int32", "values": {}})"),
        WithField(R"({"name": "a\u0000b", "type": "int32", "values": [1]})"),
        WithField(R"({"name": "n", "name": "n", "type": "int32", "values": [1]})"),
        WithField(R"({"name": "n", "type": "int32", "values": [1]},
                     {"name": "n", "type": "bool", "values": [true]})"),
        WithValue(R"("int33")", "1"),
        WithValue(R"("'ABC'")", "1"),
        WithValue(R"("bool")", "1"),
        WithValue(R"("int32")", "1.0"),
        WithValue(R"("int32")", "2147483648"),
        WithValue(R"("uint8")", "-1"),
        WithValue(R"("int64")", "9223372036854775808"),
        WithValue(R"("float")", "1e39"),
        WithValue(R"("double")", "1e999"),
        WithValue(R"("double")", R"("1")"),
        WithValue(R"("string")", R"("a\u0000b")"),
        WithValue(R"("string")", "\"\xff\""),
        WithValue(R"("string")", R"("\ud800")"),
        WithValue(R"("string")", R"({"hex": "abc"})"),
        WithValue(R"("raw")", R"({"hex": "+1"})"),
        WithValue(R"("point")", "[1, 2, 3]"),
        WithValue(R"("rect")", "[1, 2, 3, null]"),
        WithValue(R"("color")", "[1, 2, 3, 256]"),
        WithValue(R"("message")", R"({"what": 0, "fields": []})"),
    };
    for (const std::string& text : texts) {
        BMessage message;
        EXPECT_EQ(B_BAD_DATA, Read(text, message)) << text;
    }
}

std::string Repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

TEST(MessageText, BoundsDepthAndSize) {
    BMessage message;
    for (const char* open : {"[", "{\"a\":", "[{\"a\":"})
        EXPECT_EQ(B_BAD_DATA, Read(Repeated(open, 100'000), message));
    EXPECT_EQ(B_BAD_DATA, Read(Repeated("[", 100'000) + Repeated("]", 100'000), message));
    // Brackets in text are no depth.
    EXPECT_EQ(B_OK,
              Read(WithValue("\"string\"", "\"\\\\" + Repeated("[\\\"", 1000) + "\""), message));

    const std::string text = Flattened(OneOfEach());
    const std::string largest = text + std::string((1 << 20) - text.size(), ' ');
    EXPECT_EQ(B_OK, Read(largest, message));
    EXPECT_EQ(B_BAD_DATA, Read(largest + " ", message));
    BMessage large;
    large.AddString("s", std::string(1 << 20, 'x').c_str());
    std::string kept = "kept";
    EXPECT_EQ(B_BAD_VALUE, large.Flatten(&kept));
    EXPECT_EQ("kept", kept);
}

TEST(MessageText, SurvivesDamageToAnyByte) {
    const std::string text = Flattened(OneOfEach());
    std::mt19937 random(7);
    for (int i = 0; i < 5000; ++i) {
        std::string damaged = text;
        for (int hits = 1 + random() % 3; hits > 0; --hits)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        BMessage message;
        // Damaged text that is still a message is one like any other.
        if (Read(damaged, message) == B_OK)
            RoundTrip(message);
    }
}

} // namespace

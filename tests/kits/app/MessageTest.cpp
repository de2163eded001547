#include <gtest/gtest.h>

#include <string>

#include "kits/app/Message.h"

namespace {

TEST(Message, KeepsSeveralValuesOfEachType) {
    BMessage inner('innr');
    inner.AddInt32("n", 5);
    BMessage message;
    message.AddBool("bool", false);
    message.AddBool("bool", true);
    message.AddInt8("int8", -8);
    message.AddInt16("int16", -16);
    message.AddInt32("int32", 1);
    message.AddInt32("int32", -32);
    message.AddInt64("int64", INT64_MIN);
    message.AddFloat("float", 0.1f);
    message.AddDouble("double", 0.1);
    message.AddString("string", "a");
    message.AddString("string", BString("b"));
    message.AddPoint("point", BPoint(1, 2));
    message.AddRect("rect", BRect(1, 2, 3, 4));
    message.AddPointer("pointer", &inner);
    message.AddMessage("message", &inner);

    bool boolean = false;
    EXPECT_EQ(B_OK, message.FindBool("bool", 1, &boolean));
    EXPECT_TRUE(boolean);
    int8 byte = 0;
    EXPECT_EQ(B_OK, message.FindInt8("int8", &byte));
    EXPECT_EQ(-8, byte);
    int16 word = 0;
    EXPECT_EQ(B_OK, message.FindInt16("int16", &word));
    EXPECT_EQ(-16, word);
    int32 number = 0;
    EXPECT_EQ(B_OK, message.FindInt32("int32", 1, &number));
    EXPECT_EQ(-32, number);
    EXPECT_EQ(INT64_MIN, message.GetInt64("int64", 0));
    EXPECT_EQ(0.1f, message.GetFloat("float", 0));
    double real = 0;
    EXPECT_EQ(B_OK, message.FindDouble("double", &real));
    EXPECT_EQ(0.1, real);
    BString string;
    EXPECT_EQ(B_OK, message.FindString("string", 1, &string));
    EXPECT_STREQ("b", string.String());
    EXPECT_EQ(BPoint(1, 2), message.GetPoint("point", B_ORIGIN));
    BRect rect;
    EXPECT_EQ(B_OK, message.FindRect("rect", &rect));
    EXPECT_EQ(BRect(1, 2, 3, 4), rect);
    void* pointer = nullptr;
    EXPECT_EQ(B_OK, message.FindPointer("pointer", &pointer));
    EXPECT_EQ(&inner, pointer);
    inner.MakeEmpty();
    BMessage found;
    EXPECT_EQ(B_OK, message.FindMessage("message", &found));
    EXPECT_EQ('innr', found.what);
    EXPECT_EQ(5, found.GetInt32("n", 0));
}

TEST(Message, TellsWhyAValueIsNotThereAndTouchesNothing) {
    BMessage message;
    message.AddInt32("n", 1);
    int32 number = 77;
    EXPECT_EQ(B_NAME_NOT_FOUND, message.FindInt32("other", &number));
    EXPECT_EQ(B_BAD_INDEX, message.FindInt32("n", 1, &number));
    EXPECT_EQ(B_BAD_INDEX, message.FindInt32("n", -1, &number));
    EXPECT_EQ(B_BAD_VALUE, message.FindInt32(nullptr, &number));
    EXPECT_EQ(77, number);
    const char* string = "kept";
    EXPECT_EQ(B_BAD_TYPE, message.FindString("n", &string));
    EXPECT_STREQ("kept", string);
    EXPECT_EQ(B_BAD_TYPE, message.AddString("n", "x"));
    EXPECT_EQ(B_BAD_TYPE, message.ReplaceBool("n", true));
    EXPECT_EQ(B_NAME_NOT_FOUND, message.ReplaceInt32("other", 2));
    EXPECT_EQ(B_BAD_INDEX, message.ReplaceInt32("n", 1, 2));
    EXPECT_EQ(B_BAD_VALUE, message.AddString("s", static_cast<const char*>(nullptr)));
    EXPECT_EQ(1, message.CountNames(B_ANY_TYPE));
    EXPECT_EQ(1, message.GetInt32("n", 0));
    EXPECT_STREQ("default", message.GetString("n", "default"));
}

TEST(Message, ReplacesAndRemovesInPlace) {
    BMessage message('cmd1');
    message.AddInt32("a", 1);
    message.AddString("b", "x");
    message.AddInt32("a", 2);
    EXPECT_EQ(B_OK, message.ReplaceInt32("a", 1, 20));
    EXPECT_EQ(B_OK, message.ReplaceString("b", "longer than it was before"));
    EXPECT_EQ(1, message.GetInt32("a", 0));
    EXPECT_TRUE(message.HasInt32("a", 1));
    EXPECT_FALSE(message.HasInt32("a", 2));
    EXPECT_STREQ("longer than it was before", message.GetString("b"));
    EXPECT_EQ(B_OK, message.RemoveName("a"));
    EXPECT_EQ(B_NAME_NOT_FOUND, message.RemoveName("a"));
    EXPECT_FALSE(message.IsEmpty());
    message.MakeEmpty();
    EXPECT_TRUE(message.IsEmpty());
    EXPECT_EQ('cmd1', message.what);
}

TEST(Message, DescribesItsFieldsInOrder) {
    BMessage message;
    message.AddInt32("z", 1);
    message.AddBool("y", true);
    message.AddInt32("x", 1);
    message.AddInt32("x", 2);
    const char* name = nullptr;
    type_code type = 0;
    int32 count = 0;
    EXPECT_EQ(B_OK, message.GetInfo(B_INT32_TYPE, 1, &name, &type, &count));
    EXPECT_STREQ("x", name);
    EXPECT_EQ(B_INT32_TYPE, type);
    EXPECT_EQ(2, count);
    EXPECT_EQ(B_OK, message.GetInfo(B_ANY_TYPE, 1, &name, nullptr));
    EXPECT_STREQ("y", name);
    EXPECT_EQ(B_BAD_INDEX, message.GetInfo(B_INT32_TYPE, 2, &name, &type));
    EXPECT_EQ(B_OK, message.GetInfo("y", &type));
    EXPECT_EQ(B_BOOL_TYPE, type);
    EXPECT_EQ(2, message.CountNames(B_INT32_TYPE));
}

TEST(Message, HoldsDataOfAnyTypeWithTheSizeOfTheType) {
    BMessage message;
    const unsigned char color[] = {216, 216, 216, 0};
    EXPECT_EQ(B_OK, message.AddData("color", B_RGB_COLOR_TYPE, color, 4));
    EXPECT_EQ(B_BAD_VALUE, message.AddData("color", B_RGB_COLOR_TYPE, color, 3));
    EXPECT_EQ(B_BAD_VALUE, message.AddData("n", B_INT32_TYPE, color, 3));
    EXPECT_EQ(B_BAD_VALUE, message.AddData("n", B_RAW_TYPE, color, -1));
    EXPECT_EQ(B_BAD_VALUE, message.AddData("n", B_MESSAGE_TYPE, color, 4));
    EXPECT_EQ(B_OK, message.AddData("raw", B_RAW_TYPE, color, 1, false));
    EXPECT_EQ(B_OK, message.AddData("raw", B_RAW_TYPE, color, 0, false));
    const void* data = nullptr;
    ssize_t size = 0;
    EXPECT_EQ(B_OK, message.FindData("raw", B_RAW_TYPE, 1, &data, &size));
    EXPECT_EQ(0, size);
    EXPECT_EQ(B_OK, message.FindData("color", B_ANY_TYPE, &data, &size));
    EXPECT_EQ(std::string("\xd8\xd8\xd8\0", 4), std::string(static_cast<const char*>(data), size));
    // A bool of the wire may be any byte.
    message.AddData("bool", B_BOOL_TYPE, color, 1);
    EXPECT_TRUE(message.GetBool("bool"));
    // Bytes that lack the NUL are a string all the same.
    message.AddData("string", B_STRING_TYPE, "abc", 3);
    EXPECT_STREQ("abc", message.GetString("string"));
}

TEST(Message, CopiesShareNothing) {
    BMessage message('orig');
    message.AddInt32("n", 1);
    message.SetSourceRemote(true);
    BMessage copy(message);
    copy.ReplaceInt32("n", 2);
    EXPECT_EQ(1, message.GetInt32("n", 0));
    EXPECT_TRUE(copy.IsSourceRemote());
    message = message;
    EXPECT_EQ(1, message.GetInt32("n", 0));
}

TEST(Message, NestsToABoundedDepth) {
    BMessage message;
    status_t status = B_OK;
    int depth = 1;
    for (; status == B_OK && depth < 1000; ++depth) {
        BMessage outer;
        status = outer.AddMessage("inner", &message);
        if (status == B_OK)
            message = outer;
    }
    EXPECT_EQ(B_BAD_VALUE, status);
    std::string text;
    EXPECT_EQ(B_OK, message.Flatten(&text));
    BMessage read;
    EXPECT_EQ(B_OK, read.Unflatten(text.data(), text.size()));
    // Finding into the message that is searched.
    while (message.HasMessage("inner"))
        EXPECT_EQ(B_OK, message.FindMessage("inner", &message));
}

} // namespace

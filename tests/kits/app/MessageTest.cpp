#include <gtest/gtest.h>

#include <string>

#include "kits/app/Message.h"

namespace {

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
    EXPECT_EQ(B_BAD_INDEX, message.ReplaceInt32("n", 1, 2));
    EXPECT_EQ(B_BAD_VALUE, message.AddString("s", static_cast<const char*>(nullptr)));
    EXPECT_EQ(1, message.CountNames(B_ANY_TYPE));
    EXPECT_EQ(1, message.GetInt32("n", 0));
    // Replaced in place.
    message.AddString("s", "x");
    message.AddInt32("n", 2);
    EXPECT_EQ(B_OK, message.ReplaceInt32("n", 1, 20));
    EXPECT_EQ(B_OK, message.ReplaceString("s", "longer than it was before"));
    EXPECT_EQ(1, message.GetInt32("n", 0));
    EXPECT_STREQ("longer than it was before", message.GetString("s"));
    EXPECT_EQ(B_OK, message.RemoveName("n"));
    EXPECT_EQ(B_NAME_NOT_FOUND, message.RemoveName("n"));
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

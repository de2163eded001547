#include <gtest/gtest.h>

#include <string>

#include "kits/app/Message.h"

namespace {

TEST(Message, AFailureIsNamedAndChangesNothing) {
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
    EXPECT_EQ(B_BAD_VALUE, message.AddString("s", nullptr));
    EXPECT_FALSE(message.HasData("s", B_ANY_TYPE));
    message.AddInt32("n", 2);
    EXPECT_EQ(B_OK, message.ReplaceInt32("n", 20));
    EXPECT_EQ(B_OK, message.FindInt32("n", 1, &number));
    EXPECT_EQ(2, number);
    EXPECT_EQ(20, message.GetInt32("n", 0));
}

TEST(Message, HoldsDataOfAnyTypeWithTheSizeOfTheType) {
    BMessage message;
    const unsigned char color[] = {216, 216, 216, 0};
    EXPECT_EQ(B_OK, message.AddData("color", B_RGB_COLOR_TYPE, color, 4));
    EXPECT_EQ(B_BAD_VALUE, message.AddData("n", B_INT32_TYPE, color, 3));
    EXPECT_EQ(B_BAD_VALUE, message.AddData("n", B_RAW_TYPE, color, -1));
    EXPECT_EQ(B_OK, message.AddData("raw", B_RAW_TYPE, color, 1));
    EXPECT_EQ(B_OK, message.AddData("raw", B_RAW_TYPE, color, 0));
    const void* data = nullptr;
    ssize_t size = 0;
    EXPECT_EQ(B_OK, message.FindData("raw", B_RAW_TYPE, 1, &data, &size));
    EXPECT_EQ(0, size);
    EXPECT_EQ(B_OK, message.FindData("color", B_ANY_TYPE, &data, &size));
    EXPECT_EQ(std::string("\xd8\xd8\xd8\0", 4), std::string(static_cast<const char*>(data), size));
    // A bool of the wire may be any byte.
    message.AddData("bool", B_BOOL_TYPE, color, 1);
    EXPECT_TRUE(message.GetBool("bool"));
    // Bytes that lack the NUL are a string all the same; an entry needs it.
    message.AddData("string", B_STRING_TYPE, "abc", 3);
    EXPECT_STREQ("abc", message.GetString("string"));
    message.AddData("ref", B_REF_TYPE, "0123456789abcdef", 16);
    entry_ref ref;
    EXPECT_EQ(B_BAD_DATA, message.FindRef("ref", &ref));
}

} // namespace

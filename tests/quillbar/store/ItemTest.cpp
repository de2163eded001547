#include <sys/stat.h>

#include "kits/app/Message.h"
#include "kits/storage/Path.h"
#include "quillbar/app/Commands.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/store/Item.h"
#include "tests/quillbar/store/Store.h"

namespace {

class ItemTest : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        fs::create_directories(FilePath("").parent_path());
        fMenu.AddItem(fItem.MenuItem());
    }
    fs::path FilePath(const std::string& name) const { return Root() / "3 - News" / name; }
    // As the store names the file.
    static std::string StorePath(const std::string& name) {
        return "/boot/home/config/settings/Quillbar/3 - News/" + name;
    }
    bool SetFile(const std::string& name) { return fItem.SetFile(StorePath(name).c_str()); }
    std::string ItemLabel() { return fItem.MenuItem()->Label(); }

    QBMenu fMenu{"", false, false, B_ITEMS_IN_COLUMN};
    QBItem fItem{nullptr, 1, 4};
};

TEST_F(ItemTest, EmptySlotOffersToAddABookmark) {
    const BMessage* message = fItem.MenuItem()->Message();
    EXPECT_EQ(message->what, static_cast<uint32>('qbAh'));
    EXPECT_EQ(message->GetInt32("folder", 0), 4);
    EXPECT_EQ(message->GetInt32("slot", 0), 1);
    EXPECT_EQ(ItemLabel(), kEmptyLabel);
    EXPECT_FALSE(fItem.IsValid());
}

TEST_F(ItemTest, FilledSlotLaunchesTheBookmark) {
    test::MakeBookmark(FilePath("0 - Home"), "http://home.example", "a, b");
    ASSERT_TRUE(SetFile("0 - Home"));
    EXPECT_EQ(ItemLabel(), kEmptyLabel);
    fItem.SetValid(true);
    EXPECT_EQ(ItemLabel(), "0 - Home");
    EXPECT_STREQ(fItem.Keywords().String(), "a, b");
    const BMessage* message = fItem.MenuItem()->Message();
    EXPECT_EQ(message->what, static_cast<uint32>('qbf3'));
    EXPECT_EQ(message->GetInt32("folder", 0), 4);
    EXPECT_EQ(message->GetInt32("slot", 0), 1);
    EXPECT_EQ(message->CountNames(B_ANY_TYPE), 2);
}

TEST_F(ItemTest, LabelShowsTheUrlWhenSet) {
    gSettings->SetShowURL(true);
    test::MakeBookmark(FilePath("0 - Home"), "http://" + std::string(53, 'x'));
    SetFile("0 - Home");
    fItem.SetValid(true);
    EXPECT_EQ(ItemLabel(), "0 - Home [http://" + std::string(39, 'x') + "....]");

    test::SetUrl(FilePath("0 - Home"), "");
    SetFile("0 - Home");
    fItem.UpdateItem();
    EXPECT_EQ(ItemLabel(), "0 - Home");
}

TEST_F(ItemTest, FillingAFilledSlotKeepsTheLabel) {
    test::MakeBookmark(FilePath("0 - Home"), "http://home");
    test::MakeBookmark(FilePath("0 - Other"), "http://other");
    SetFile("0 - Home");
    fItem.SetValid(true);
    SetFile("0 - Other");
    fItem.SetValid(true);
    EXPECT_EQ(ItemLabel(), "0 - Home");
    fItem.SetValid(false);
    EXPECT_STREQ(fItem.Name().String(), "");
    EXPECT_STREQ(fItem.Url().String(), "");
    struct stat status;
    ASSERT_EQ(stat(FilePath("0 - Other").c_str(), &status), 0);
    EXPECT_EQ(fItem.RawItem()->node, static_cast<int64>(status.st_ino));
    EXPECT_EQ(fItem.Ref().name, "0 - Other");
}

TEST_F(ItemTest, WhatWasReadBeforeAMissingPartStays) {
    test::MakeBookmark(FilePath("0 - NoKeywords"), "http://home");
    test::RemoveAttribute(FilePath("0 - NoKeywords"), "META:keyw");
    EXPECT_FALSE(SetFile("0 - NoKeywords"));
    EXPECT_STREQ(fItem.Name().String(), "NoKeywords");
    EXPECT_STREQ(fItem.Url().String(), "http://home");
    EXPECT_EQ(fItem.Path(), nullptr);

    EXPECT_FALSE(SetFile("0 - Missing"));
    EXPECT_STREQ(fItem.Name().String(), "NoKeywords");

    fs::create_directory(FilePath("0 - Directory"));
    EXPECT_FALSE(SetFile("0 - Directory"));
    EXPECT_STREQ(fItem.Name().String(), "Directory");
}

TEST_F(ItemTest, NothingButFilesIsOpened) {
    ASSERT_EQ(mkfifo(FilePath("0 - Fifo").c_str(), 0600), 0);
    EXPECT_FALSE(SetFile("0 - Fifo"));
    fs::create_symlink("nowhere", FilePath("0 - Dangling"));
    EXPECT_FALSE(SetFile("0 - Dangling"));
    fs::create_symlink("0 - Loop", FilePath("0 - Loop"));
    EXPECT_FALSE(SetFile("0 - Loop"));
}

TEST_F(ItemTest, AttributesOfAnyShapeAreRead) {
    const fs::path file = FilePath("0 - Odd");
    test::MakeBookmark(file, "http://home");
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {std::string("\0", 1), ""},
        {"http://without.nul", "http://without.nul"},
        {std::string("http://a\0b", 10), "http://a"},
        {std::string(3000, 'x'), std::string(3000, 'x')},
        {"\xff\xfe\n", "\xff\xfe\n"},
    };
    for (const auto& [written, read] : cases) {
        test::SetAttribute(file, "META:url", written);
        EXPECT_TRUE(SetFile("0 - Odd"));
        EXPECT_EQ(std::string(fItem.Url().String()), read);
    }
}

TEST_F(ItemTest, NamesOfAnyBytesAreShown) {
    const std::string names[] = {"0 - \xff\xfe\x80", "0 - two\nlines", "0 -",
                                 "0 - " + std::string(251, 'n')};
    for (const std::string& name : names) {
        test::MakeBookmark(FilePath(name), "http://x");
        ASSERT_TRUE(SetFile(name)) << name;
        fItem.SetValid(true);
        EXPECT_EQ(ItemLabel(), name == "0 -" ? "0 - " : name);
        fItem.SetValid(false);
    }
}

} // namespace

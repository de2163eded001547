#include "quillbar/store/Item.h"
#include "kits/app/Message.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Path.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/base/Commands.h"
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
    node_ref node;
    const entry_ref ref = fItem.Ref();
    ASSERT_EQ(BEntry(&ref).GetNodeRef(&node), B_OK);
    EXPECT_EQ(fItem.RawItem()->node, node.node);
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

} // namespace

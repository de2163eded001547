#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>

#include "quillbar/addbookmark/SaveBookmark.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/TemporaryHome.h"

namespace fs = std::filesystem;
using test::GetAttribute;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kUrl = "http://a.b/";

class SaveBookmarkTest : public testing::Test {
protected:
    SaveBookmarkTest() {
        fs::create_directories(fFolder);
        Write(fVictim, "keep");
    }
    ~SaveBookmarkTest() override { EXPECT_EQ(Text(fVictim), "keep"); }

    // Into slot digit 4 of folder digit 2.
    QBSaveResult Save(const std::string& name, const std::string& folder = "News",
                      const std::string& url = kUrl) {
        const QBSaveOutcome outcome =
            SaveBookmark({3, 5, folder.c_str(), name.c_str(), url.c_str(), "k"});
        fReason = outcome.reason;
        return outcome.result;
    }
    static void Write(const fs::path& path, const std::string& text) {
        std::ofstream(path) << text;
    }
    static std::string Text(const fs::path& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    test::TemporaryHome fHome;
    const fs::path fRoot = fHome.Config() / "Quillbar";
    const fs::path fFolder = fRoot / "2 - News";
    const fs::path fVictim = fRoot / "victim";
    BString fReason;
};

TEST_F(SaveBookmarkTest, AFilledSlotIsRenamedAndRewrittenInARenamedFolder) {
    test::MakeBookmark(fFolder / "4 - Old", "http://old", "old");
    Write(fFolder / "4 - Old", "contents");
    ASSERT_EQ(Save("New", "Work"), QBSaveResult::Saved);
    const fs::path file = fRoot / "2 - Work" / "4 - New";
    EXPECT_FALSE(fs::exists(fFolder));
    EXPECT_EQ(Text(file), "contents");
    EXPECT_EQ(GetAttribute(file, "META:url"), std::string(kUrl) + '\0');
    EXPECT_EQ(GetAttribute(file, "META:title"), std::string("New\0", 4));

    // Another entry has the name: the bookmark stays, and so does the folder's new name.
    fs::create_hard_link(fVictim, fRoot / "2 - Work" / "4 - Taken");
    fs::create_directory(fRoot / "2 - Work" / "4 - a");
    for (const char* name : {"Taken", "a/b"})
        EXPECT_EQ(Save(name, "Work"), QBSaveResult::NotRenamed) << name;
    EXPECT_EQ(GetAttribute(file, "META:title"), std::string("New\0", 4));
}

TEST_F(SaveBookmarkTest, NamesNeverLeadOutOfTheFolder) {
    fs::create_directory(fFolder / "4 - a");
    for (const std::string& name :
         {std::string("a/b"), std::string("a/../../victim"), std::string(252, 'x')})
        EXPECT_EQ(Save(name), QBSaveResult::NotCreated) << name;
    EXPECT_TRUE(fs::is_empty(fFolder / "4 - a"));
    // A folder that cannot be called so keeps its name, and the bookmark is saved.
    for (const char* name : {"", "..", "\x01\n\x7f", "\xff\xfe", " x "}) {
        for (const char* folder : {"../../out", "a/b"}) {
            ASSERT_EQ(Save(name, folder), QBSaveResult::Saved) << name;
            EXPECT_TRUE(fs::remove(fFolder / (std::string("4 - ") + name))) << name;
        }
    }
    EXPECT_EQ(Save(std::string(251, 'x'), ""), QBSaveResult::Saved);
    EXPECT_TRUE(fs::exists(fRoot / "2 - "));
}

TEST_F(SaveBookmarkTest, WhatOthersPutInItsPlaceIsNoWayOut) {
    fs::create_symlink(fVictim, fFolder / "4 - Link");
    fs::create_symlink(fHome.Path() / "absent", fFolder / "4 - Dangling");
    mkfifo((fFolder / "4 - Pipe").c_str(), 0600);
    for (const char* name : {"Link", "Dangling", "Pipe"})
        EXPECT_EQ(Save(name), QBSaveResult::NotCreated) << name;
    EXPECT_FALSE(fs::exists(fHome.Path() / "absent"));
    // A file without the type fills no slot; it is emptied.
    Write(fFolder / "4 - Plain", "text");
    EXPECT_EQ(Save("Plain"), QBSaveResult::Saved);
    EXPECT_EQ(fs::file_size(fFolder / "4 - Plain"), 0u);

    fs::rename(fFolder, fRoot / "News");
    fs::create_directory_symlink(fRoot / "News", fFolder);
    EXPECT_EQ(Save("Gone"), QBSaveResult::NoFolder);
}

TEST_F(SaveBookmarkTest, ASlotShownThroughALinkIsWrittenInItsTarget) {
    const fs::path target = fHome.Path() / "synced" / "4 - News";
    test::MakeBookmark(target, "http://old");
    fs::create_symlink(target, fFolder / "a link");
    EXPECT_EQ(Save("News"), QBSaveResult::Saved);
    EXPECT_EQ(GetAttribute(target, "META:url"), std::string(kUrl) + '\0');
    EXPECT_EQ(Save("Other"), QBSaveResult::NotRenamed);
    EXPECT_THAT(fReason.String(), HasSubstr(target.string()));
    EXPECT_TRUE(fs::exists(target));
    EXPECT_FALSE(fs::exists(fFolder / "4 - Other"));
}

TEST_F(SaveBookmarkTest, WhatTheDiskDoesNotTakeIsNamed) {
    ASSERT_EQ(Save("Old"), QBSaveResult::Saved);
    ASSERT_EQ(Save("Long", "News", std::string(100'000, 'u')), QBSaveResult::Incomplete);
    EXPECT_THAT(fReason.String(), HasSubstr("URL: "));
    EXPECT_THAT(fReason.String(), Not(HasSubstr("Keywords")));
    EXPECT_THAT(fReason.String(), HasSubstr((fFolder / "4 - Long").string()));
    // The address that was there before is better than none.
    EXPECT_EQ(GetAttribute(fFolder / "4 - Long", "META:url"), std::string(kUrl) + '\0');
    EXPECT_EQ(GetAttribute(fFolder / "4 - Long", "META:title"), std::string("Long\0", 5));
}

} // namespace

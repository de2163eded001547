#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <set>
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
    SaveBookmarkTest() { fs::create_directories(fFolder); }

    // Into slot digit 4 of folder digit 2.
    QBSaveResult Save(const std::string& name, const std::string& folder = "News",
                      const std::string& url = kUrl) {
        const QBSaveOutcome outcome =
            SaveBookmark({3, 5, folder.c_str(), name.c_str(), url.c_str(), "k"});
        fReason = outcome.reason;
        return outcome.result;
    }
    // Everything below the home folder, but for what the fonts keep.
    std::set<std::string> Tree() const {
        std::set<std::string> tree;
        for (const auto& entry : fs::recursive_directory_iterator(fHome.Path()))
            tree.insert(entry.path().string().substr(fHome.Path().string().size()));
        return tree;
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
    BString fReason;
};

TEST_F(SaveBookmarkTest, AFilledSlotIsRenamedAndRewrittenInARenamedFolder) {
    test::MakeBookmark(fFolder / "4 - Old", "http://old", "old");
    Write(fFolder / "4 - Old", "contents");
    ASSERT_EQ(Save("New", "Work"), QBSaveResult::Saved);
    const fs::path file = fRoot / "2 - Work" / "4 - New";
    EXPECT_EQ(Tree().count("/.config/Quillbar/2 - Work/4 - New"), 1u);
    EXPECT_EQ(fs::exists(fFolder), false);
    EXPECT_EQ(Text(file), "contents");
    EXPECT_EQ(GetAttribute(file, "META:url"), std::string(kUrl) + '\0');
    EXPECT_EQ(GetAttribute(file, "META:title"), std::string("New\0", 4));

    // Another entry has the name: the bookmark stays, and so does the folder's new name.
    Write(fRoot / "2 - Work" / "4 - Taken", "mine");
    EXPECT_EQ(Save("Taken", "Work"), QBSaveResult::NotRenamed);
    EXPECT_EQ(GetAttribute(file, "META:title"), std::string("New\0", 4));
    EXPECT_EQ(Text(fRoot / "2 - Work" / "4 - Taken"), "mine");
}

TEST_F(SaveBookmarkTest, NamesNeverLeadOutOfTheFolder) {
    Write(fHome.Path() / "victim", "keep");
    fs::create_directory(fFolder / "4 - a");
    const auto before = Tree();
    for (const char* name : {"a/b", "a/../../../../victim", "/victim", "../x", "a/"})
        EXPECT_EQ(Save(name), QBSaveResult::NotCreated) << name;
    EXPECT_EQ(Save(std::string(252, 'x')), QBSaveResult::NotCreated);
    EXPECT_EQ(Tree(), before);
    // A folder that cannot be called so keeps its name, and the bookmark is saved.
    for (const char* name : {"", ".", "..", "-rf *", "\x01\n\x7f", "\xff\xfe", " x "}) {
        for (const char* folder : {"../../out", "a/b", ""}) {
            ASSERT_EQ(Save(name, folder), QBSaveResult::Saved) << name;
            const fs::path where = folder[0] == '\0' ? fRoot / "2 - " : fFolder;
            EXPECT_TRUE(fs::remove(where / (std::string("4 - ") + name))) << name;
            if (folder[0] == '\0')
                fs::rename(where, fFolder);
        }
    }
    EXPECT_EQ(Save(std::string(251, 'x')), QBSaveResult::Saved);
    EXPECT_EQ(Text(fHome.Path() / "victim"), "keep");
}

TEST_F(SaveBookmarkTest, WhatOthersPutInItsPlaceIsNoWayOut) {
    const fs::path victim = fHome.Path() / "victim";
    Write(victim, "keep");
    fs::create_symlink(victim, fFolder / "4 - Link");
    EXPECT_EQ(Save("Link"), QBSaveResult::NotCreated);
    fs::create_symlink(fHome.Path() / "absent", fFolder / "4 - Dangling");
    EXPECT_EQ(Save("Dangling"), QBSaveResult::NotCreated);
    mkfifo((fFolder / "4 - Pipe").c_str(), 0600);
    EXPECT_EQ(Save("Pipe"), QBSaveResult::NotCreated);
    EXPECT_EQ(Text(victim), "keep");
    EXPECT_FALSE(fs::exists(fHome.Path() / "absent"));
    // A file without the type fills no slot; it is emptied.
    Write(fFolder / "4 - Plain", "text");
    EXPECT_EQ(Save("Plain"), QBSaveResult::Saved);
    EXPECT_EQ(fs::file_size(fFolder / "4 - Plain"), 0u);

    fs::rename(fFolder, fRoot / "News");
    fs::create_directory_symlink(fRoot / "News", fFolder);
    EXPECT_EQ(Save("Gone"), QBSaveResult::NoFolder);
    fs::remove_all(fRoot);
    EXPECT_EQ(Save("Gone"), QBSaveResult::NoFolder);
    EXPECT_FALSE(fs::exists(fRoot));
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

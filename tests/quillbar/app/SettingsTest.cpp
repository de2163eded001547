#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "kits/app/Message.h"
#include "quillbar/base/Settings.h"
#include "tests/support/TemporaryHome.h"

namespace fs = std::filesystem;

namespace {

class SettingsTest : public testing::Test {
protected:
    // The settings file, or a neighbour of it.
    fs::path File(const std::string& tail = "") const {
        return fHome.Config() / ("Quillbar.settings" + tail);
    }
    static BPath Path() { return BPath("/boot/home/config/settings/Quillbar.settings"); }

    void Write(const std::string& text) {
        std::ofstream(File(), std::ios::binary | std::ios::trunc) << text;
    }
    std::string Read(const fs::path& path) const {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    static void Save(int32 hotKey) {
        QBSettings settings(Path());
        settings.SetHotKey(hotKey);
        settings.Save();
    }
    // What a new start reads; -1 if there is nothing to read.
    static int32 LoadedHotKey() {
        QBSettings settings(Path());
        return settings.Load() ? settings.GetHotKey() : -1;
    }

    test::TemporaryHome fHome;
};

TEST_F(SettingsTest, FieldsOfAnotherTypeAreLeftAloneAndMissingOnesCanBeSet) {
    BMessage message;
    for (const char* name : {"browser", "pos", "align", "url", "ontop", "color"})
        message.AddString(name, "text");
    std::string text;
    ASSERT_EQ(message.Flatten(&text), B_OK);
    Write(text);
    QBSettings settings(Path());
    ASSERT_TRUE(settings.Load());
    settings.SetBrowser(kQBOpera);
    settings.SetPos({1, 1});
    settings.SetAlign(kQBAlignHorizontal);
    settings.SetShowURL(false);
    settings.SetOnTop(true);
    settings.SetColor({1, 1, 1, 1});
    settings.SetHotKey(3);
    settings.Save();
    message.AddInt32("hotkey", 3);
    ASSERT_EQ(message.Flatten(&text), B_OK);
    EXPECT_EQ(Read(File()), text);
}

TEST_F(SettingsTest, GarbageIsPutAsideAndDefaultsStay) {
    QBSettings(Path()).Save();
    const std::string whole = Read(File());
    const std::string cases[] = {"{", std::string("\xff\xfe\0garbage", 10),
                                 whole.substr(0, whole.size() / 2), whole + whole,
                                 std::string(2 << 20, ' ')};
    for (const std::string& text : cases) {
        Write(text);
        QBSettings settings(Path());
        EXPECT_FALSE(settings.Load());
        EXPECT_EQ(Read(File(".bad")), text);
        settings.Save();
        EXPECT_EQ(Read(File()), whole);
    }
    fs::remove(File(".bad"));
    Write("");
    EXPECT_FALSE(QBSettings(Path()).Load());
    EXPECT_FALSE(fs::exists(File(".bad")));
}

TEST_F(SettingsTest, LinkStaysALink) {
    fs::create_directories(fHome.Path() / "dotfiles");
    const fs::path target = fHome.Path() / "dotfiles" / "quillbar";
    fs::create_symlink("../dotfiles/quillbar", File());
    // It dangles at first.
    Save(5);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target)));
    fs::permissions(target, fs::perms(0640));
    Save(6);
    EXPECT_TRUE(fs::is_symlink(File()));
    EXPECT_EQ(fs::status(File()).permissions(), fs::perms(0640));
    EXPECT_EQ(LoadedHotKey(), 6);
    EXPECT_FALSE(fs::exists(File(".new")));
    fs::remove(File());
    fs::create_symlink("Quillbar.settings", File());
    Save(7);
    EXPECT_TRUE(fs::is_symlink(File()));
}

// The directory would allow to replace them.
TEST_F(SettingsTest, FilesThatMayNotBeReadOrWrittenAreNotReplaced) {
    fs::permissions(fHome.Path(), fs::perms(0755));
    fs::permissions(fHome.Config(), fs::perms(0777));
    for (const fs::perms mode : {fs::perms(0000), fs::perms(0444)}) {
        Save(5);
        fs::permissions(File(), mode);
        const auto save = [] {
            if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
                _exit(1);
            QBSettings settings(Path());
            settings.Load();
            settings.SetHotKey(6);
            settings.Save();
            _exit(0);
        };
        EXPECT_EXIT(save(), testing::ExitedWithCode(0), "");
        fs::permissions(File(), fs::perms(0644));
        EXPECT_EQ(LoadedHotKey(), 5);
    }
}

TEST_F(SettingsTest, TheEmergencySavesTheLastChoiceEvenAfterTheSettingsAreGone) {
    std::function<void()> save;
    {
        QBSettings settings(Path());
        save = settings.EmergencySave();
        settings.SetHotKey(4);
    }
    save();
    EXPECT_EQ(LoadedHotKey(), 4);
}

TEST_F(SettingsTest, WhatIsNoFileIsNeitherReadNorReplaced) {
    ASSERT_EQ(mkfifo(File().c_str(), 0600), 0);
    QBSettings settings(Path());
    EXPECT_FALSE(settings.Load());
    settings.Save();
    EXPECT_TRUE(fs::is_fifo(File()));
    // It is in nobody's way any more.
    fs::remove(File());
    settings.Save();
    EXPECT_EQ(LoadedHotKey(), 8);

    fs::remove(File());
    fs::create_directories(File() / "inside");
    QBSettings again(Path());
    EXPECT_FALSE(again.Load());
    again.Save();
    EXPECT_TRUE(fs::is_directory(File() / "inside"));
}

TEST_F(SettingsTest, FullDiskKeepsTheOldFile) {
    Save(5);
    const auto save = [] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100, 100};
        setrlimit(RLIMIT_FSIZE, &limit);
        Save(6);
        _exit(0);
    };
    EXPECT_EXIT(save(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(LoadedHotKey(), 5);
    EXPECT_FALSE(fs::exists(File(".new")));
}

TEST_F(SettingsTest, NeighbourThatIsALinkIsNotFollowed) {
    std::ofstream(fHome.Path() / "precious") << "precious";
    fs::create_symlink(fHome.Path() / "precious", File(".new"));
    Save(5);
    EXPECT_EQ(Read(fHome.Path() / "precious"), "precious");
    EXPECT_EQ(LoadedHotKey(), 5);
    EXPECT_FALSE(fs::is_symlink(File()));
}

} // namespace

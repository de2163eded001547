#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

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

    // What a start makes of the file that is there, with another hot key.
    static void Save(int32 hotKey) {
        QBSettings settings(Path());
        settings.Load();
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

TEST_F(SettingsTest, LinkStaysALink) {
    const fs::path target = fHome.Path() / "elsewhere";
    fs::create_symlink("../elsewhere", File());
    Save(5); // it dangles
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

// The directory would allow to replace them, and the disk may be full.
TEST_F(SettingsTest, FilesThatMayNotBeReadOrWrittenAreNotReplaced) {
    fs::permissions(fHome.Path(), fs::perms(0755));
    fs::permissions(fHome.Config(), fs::perms(0777));
    const auto save = [](bool isDiskFull) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100, 100};
        const int result = isDiskFull       ? setrlimit(RLIMIT_FSIZE, &limit)
                           : geteuid() == 0 ? setgid(65534) | setuid(65534)
                                            : 0;
        Save(6);
        _exit(result);
    };
    for (const auto mode : {0000, 0444, 0644}) {
        Save(5);
        fs::permissions(File(), fs::perms(mode));
        EXPECT_EXIT(save(mode == 0644), testing::ExitedWithCode(0), "");
        fs::permissions(File(), fs::perms(0644));
        EXPECT_EQ(LoadedHotKey(), 5) << mode;
        EXPECT_FALSE(fs::exists(File(".new")));
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
    fs::create_directory(File());
    Save(5);
    EXPECT_TRUE(fs::is_directory(File()));
}

TEST_F(SettingsTest, NeighbourThatIsALinkIsNotFollowed) {
    fs::create_symlink(fHome.Path() / "absent", File(".new"));
    Save(5);
    EXPECT_FALSE(fs::exists(fHome.Path() / "absent"));
    EXPECT_EQ(LoadedHotKey(), 5);
    EXPECT_FALSE(fs::is_symlink(File()));
}

} // namespace

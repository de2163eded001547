#include "host/files/Paths.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include "tests/support/TemporaryHome.h"

namespace test {

class PathsTest : public testing::Test {
protected:
    // Null unsets a variable.
    static void SetHomes(const char* home, const char* settings) {
        unsetenv("HOME");
        unsetenv("XDG_CONFIG_HOME");
        if (home)
            setenv("HOME", home, 1);
        if (settings)
            setenv("XDG_CONFIG_HOME", settings, 1);
    }
    // The platform's path, the system's, and back.
    static void ExpectMapping(const std::string& platform, const std::string& host) {
        EXPECT_EQ(host::HostPath(platform), host);
        EXPECT_EQ(host::PlatformPath(host), platform);
    }

    TemporaryHome fHome; // restores the variables
};

TEST_F(PathsTest, HomeAndSettingsHavePlacesOfTheirOwn) {
    SetHomes("/home/someone//", nullptr);
    ExpectMapping("/boot/home", "/home/someone");
    ExpectMapping("/boot/home/config/settings/Name/3 - x", "/home/someone/.config/Name/3 - x");
    ExpectMapping("/boot/home/config/settingsold", "/home/someone/config/settingsold");
    for (const char* path : {"/", "/boot/homestead", "/home/someone2", "/tmp/x"})
        ExpectMapping(path, path);
    // Read as the platform's path, this would be another directory.
    EXPECT_EQ(host::PlatformPath("/home/someone/config/settings"), "/home/someone/config/settings");

    SetHomes("/home/someone", "/srv/settings/");
    ExpectMapping("/boot/home/config/settings/x", "/srv/settings/x");
    ExpectMapping("/boot/home/.config/x", "/home/someone/.config/x");
}

TEST_F(PathsTest, OddHomesAndSettings) {
    SetHomes("/data/config/home", "/data/config");
    ExpectMapping("/boot/home/config/settings/x", "/data/config/x");
    EXPECT_EQ(host::HostPath("/boot/home/x"), "/data/config/home/x");
    EXPECT_EQ(host::HostPath(host::PlatformPath("/data/config/home/x")), "/data/config/home/x");

    SetHomes("/", "relative");
    ExpectMapping("/boot/home/config/settings/x", "/.config/x");
    ExpectMapping("/boot/home", "/");

    SetHomes(nullptr, nullptr);
    EXPECT_EQ(host::HostPath("/boot/home"), getpwuid(getuid())->pw_dir);
}

} // namespace test

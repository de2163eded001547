#include "host/files/Paths.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include "tests/support/TemporaryHome.h"

namespace test {

TEST(PathsTest, HomeAndSettingsHavePlacesOfTheirOwn) {
    const TemporaryHome restored;
    const auto setHomes = [](const char* home, const char* settings) {
        setenv("HOME", home, 1);
        setenv("XDG_CONFIG_HOME", settings, 1);
    };
    const struct {
        const char *home, *settings, *platform, *host;
    } cases[] = {
        {"/home/a//", "", "/boot/home", "/home/a"},
        {"/home/a", "", "/boot/home/config/settings/Name/3 - x", "/home/a/.config/Name/3 - x"},
        {"/home/a", "", "/boot/home/config/settingsold", "/home/a/config/settingsold"},
        // Read as the platform's path, this would be another directory.
        {"/home/a", "", "/home/a/config/settings", "/home/a/config/settings"},
        {"/home/a", "", "/boot/homestead", "/boot/homestead"},
        {"/home/a", "", "/home/a2", "/home/a2"},
        {"/home/a", "/srv/settings/", "/boot/home/.config/x", "/home/a/.config/x"},
        {"/srv/home", "/srv/", "/boot/home/config/settings/x", "/srv/x"},
        {"/", "relative", "/boot/home/config/settings/x", "/.config/x"},
        {"/", "relative", "/boot/home", "/"},
    };
    for (const auto& [home, settings, platform, host] : cases) {
        setHomes(home, settings);
        EXPECT_EQ(host::HostPath(platform), host);
        EXPECT_EQ(host::PlatformPath(host), platform);
    }
    setHomes("/srv/home", "/srv");
    EXPECT_EQ(host::HostPath(host::PlatformPath("/srv/home/x")), "/srv/home/x");
    setHomes("", "");
    EXPECT_EQ(host::HostPath("/boot/home"), getpwuid(getuid())->pw_dir);
}

} // namespace test

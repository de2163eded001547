#include "host/files/Paths.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <optional>
#include <string>

namespace test {

// Sets or, without a value, unsets a variable of the environment for a while.
class Variable {
public:
    Variable(const char* name, std::optional<std::string> value)
        : fName(name) {
        if (const char* old = getenv(name))
            fOld = old;
        Set(value);
    }
    ~Variable() { Set(fOld); }

private:
    void Set(const std::optional<std::string>& value) {
        if (value)
            setenv(fName, value->c_str(), 1);
        else
            unsetenv(fName);
    }

    const char* fName;
    std::optional<std::string> fOld;
};

// The platform's path, the system's, and back.
void ExpectMapping(const std::string& platform, const std::string& host) {
    EXPECT_EQ(host::HostPath(platform), host);
    EXPECT_EQ(host::PlatformPath(host), platform);
}

TEST(Paths, HomeAndSettingsHavePlacesOfTheirOwn) {
    Variable home("HOME", "/home/someone//");
    {
        Variable config("XDG_CONFIG_HOME", std::nullopt);
        ExpectMapping("/boot/home", "/home/someone");
        ExpectMapping("/boot/home/Desktop", "/home/someone/Desktop");
        ExpectMapping("/boot/home/config/settings/Name/3 - x", "/home/someone/.config/Name/3 - x");
        ExpectMapping("/boot/home/config/settingsold", "/home/someone/config/settingsold");
        for (const char* path : {"/", "/boot/homestead", "/home/someone2", "/tmp/x"})
            ExpectMapping(path, path);
        // Read as the platform's path, this would be another directory.
        EXPECT_EQ(host::PlatformPath("/home/someone/config/settings"),
                  "/home/someone/config/settings");
    }
    Variable config("XDG_CONFIG_HOME", "/srv/settings/");
    ExpectMapping("/boot/home/config/settings/x", "/srv/settings/x");
    ExpectMapping("/boot/home/.config/x", "/home/someone/.config/x");
}

TEST(Paths, HomeMayBeInsideOfSettings) {
    Variable home("HOME", "/data/config/home");
    Variable config("XDG_CONFIG_HOME", "/data/config");
    ExpectMapping("/boot/home/config/settings/x", "/data/config/x");
    EXPECT_EQ(host::HostPath("/boot/home/x"), "/data/config/home/x");
    EXPECT_EQ(host::HostPath(host::PlatformPath("/data/config/home/x")), "/data/config/home/x");
}

TEST(Paths, RelativeSettingsAreIgnoredAndTheRootMayBeHome) {
    Variable home("HOME", "/");
    Variable config("XDG_CONFIG_HOME", "relative");
    ExpectMapping("/boot/home/config/settings/x", "/.config/x");
    ExpectMapping("/boot/home/x", "/x");
    ExpectMapping("/boot/home", "/");
}

TEST(Paths, WithoutHomeTheAccountTells) {
    Variable home("HOME", std::nullopt);
    Variable config("XDG_CONFIG_HOME", std::nullopt);
    const passwd* account = getpwuid(getuid());
    ASSERT_NE(account, nullptr);
    EXPECT_EQ(host::HostPath("/boot/home"), account->pw_dir);
}

} // namespace test

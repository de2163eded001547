#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "kits/app/Roster.h"
#include "tests/support/RecordedApps.h"
#include "tests/support/TemporaryHome.h"

namespace {

constexpr const char* kOpera = "application/x-vnd.operasoftware-opera";
constexpr const char* kNetPositive = "application/x-vnd.Be-NPOS";

class RosterTest : public testing::Test {
protected:
    status_t Launch(const char* signature, const std::string& argument) {
        const char* argv[] = {argument.c_str()};
        return be_roster->Launch(signature, 1, argv);
    }

    test::TemporaryHome fHome;
    test::RecordedApps fApps{fHome};
};

TEST_F(RosterTest, FindsTheExecutableOfWhatIsInstalledNow) {
    entry_ref ref;
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND, be_roster->FindApp(kOpera, &ref));
    fApps.InstallOpera();
    EXPECT_EQ(B_OK, be_roster->FindApp(kOpera, &ref));
    struct stat directory;
    ASSERT_EQ(0, stat("/bin", &directory));
    EXPECT_EQ(
        entry_ref(static_cast<int32>(directory.st_dev), static_cast<int64>(directory.st_ino), "sh"),
        ref);
    fApps.Uninstall("opera");
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND, be_roster->FindApp(kOpera, &ref));
}

TEST_F(RosterTest, RefusesAndStartsNothing) {
    fApps.InstallOpera();
    EXPECT_EQ(B_BAD_VALUE, Launch(kOpera, "--remote-allow-origins=*"));
    EXPECT_EQ(B_BAD_VALUE, Launch(kOpera, "http://x/\ny"));
    EXPECT_EQ(B_BAD_VALUE, Launch(nullptr, "http://x/"));

    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND, Launch(kNetPositive, "http://x/"));
    EXPECT_NE(B_OK, Launch(kOpera, "http://x/" + std::string(1 << 20, 'y')));
    EXPECT_EQ(B_OK, Launch(kOpera, "http://last/"));
    const auto launches = fApps.WaitForLaunches(1);
    ASSERT_EQ(1u, launches.size());
    EXPECT_EQ("http://last/", launches[0].arguments.at(0));
}

} // namespace

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "kits/app/Roster.h"
#include "tests/kits/app/TestLooper.h"
#include "tests/support/TemporaryHome.h"

namespace test {
namespace {

constexpr const char* kBrowser = "application/x-vnd.Be-NPOS";

class RosterTest : public LooperTest {
protected:
    void Install(const std::string& name, const std::string& command) {
        std::filesystem::create_directories(home.Data() / "applications");
        std::ofstream(home.Data() / "applications/browser.desktop")
            << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=" << command << "\n";
        std::ofstream(home.Config() / "mimeapps.list")
            << "[Default Applications]\nx-scheme-handler/https=browser.desktop\n";
    }

    TemporaryHome home;
};

TEST_F(RosterTest, AProgramsNameIsThatOfItsEntry) {
    EXPECT_STREQ("", be_roster->NameOf(kBrowser).String());
    Install("Wide Web", "env LANG=C /bin/sh -c true");
    EXPECT_STREQ("Wide Web", be_roster->NameOf(kBrowser).String());
    EXPECT_EQ(B_OK, be_roster->FindApp(kBrowser));
    Install("Gone Web", "/nowhere/web %u");
    EXPECT_STREQ("Gone Web", be_roster->NameOf(kBrowser).String());
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND, be_roster->FindApp(kBrowser));
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND, be_roster->Launch(kBrowser, 0, nullptr));
}

TEST_F(RosterTest, AnErrorAtOnceIsReportedWithTheName) {
    std::string name;
    looper->call = [&](BMessage* message) { name = message->GetString("name", ""); };
    looper->AddCommonFilter(
        new BMessageFilter(B_PROGRAM_FAILED, [](BMessage* message, BHandler**, BMessageFilter*) {
            message->what = 'call';
            return B_DISPATCH_MESSAGE;
        }));
    looper->Run();
    Install("Broken Web", "/bin/false %u");
    const char* const link[] = {"http://x"};
    EXPECT_EQ(B_OK, be_roster->Launch(kBrowser, 1, link, messenger));
    const bigtime_t deadline = system_time() + 10'000'000;
    std::string reported;
    while (reported.empty() && system_time() < deadline) {
        looper->Lock();
        reported = name;
        looper->Unlock();
        snooze(1000);
    }
    EXPECT_EQ("Broken Web", reported);
    const char* const option[] = {"--version"};
    EXPECT_EQ(B_BAD_VALUE, be_roster->Launch(kBrowser, 1, option));
}

} // namespace
} // namespace test

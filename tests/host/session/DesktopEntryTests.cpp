#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "host/session/programs/DesktopEntry.h"
#include "tests/support/TemporaryHome.h"

namespace fs = std::filesystem;
using namespace host;

namespace {

using Words = std::vector<std::string>;

class DesktopEntryTest : public testing::Test {
protected:
    std::optional<DesktopEntry> Load(const std::string& lines) {
        const fs::path path = fHome.Path() / "x.desktop";
        std::ofstream(path) << "[Desktop Entry]\nType=Application\nName=Ex\n" << lines;
        return DesktopEntry::Load(path);
    }

    // The command for these arguments without its first word, which is /bin/echo.
    Words Expand(const std::string& exec, const Words& arguments, const std::string& keys = "") {
        const auto entry = Load("Exec=/bin/echo " + exec + "\n" + keys);
        Command command;
        if (!entry || entry->MakeCommand(arguments, command) != B_OK || command.arguments.empty())
            return {"(no command)"};
        return {command.arguments.begin() + 1, command.arguments.end()};
    }

    test::TemporaryHome fHome;
};

TEST_F(DesktopEntryTest, TheLinkIsOneArgument) {
    const Words link = {"http://x/?a=1&b=%u $(x) \"q\""};
    for (const char* code : {"%u", "%U", "%f", "%F", ""})
        EXPECT_EQ(link, Expand(code, link)) << code;
    EXPECT_EQ((Words{"--new", "--url=" + link[0], "end"}), Expand("--new --url=%u end", link));
    EXPECT_EQ((Words{"a b", "100%", link[0]}), Expand("\"a b\" 100%% %u", link));
    EXPECT_EQ((Words{link[0]}), Expand("%u %U", link)) << "once only";
    const Words links = {"http://1", "http://2"};
    EXPECT_EQ(links, Expand("%U", links));
    EXPECT_EQ((Words{"http://1"}), Expand("%u", links));
    EXPECT_EQ((Words{"-a", "", "z"}), Expand("-a %u \"\" %U z", {}))
        << "without arguments codes vanish";
}

TEST_F(DesktopEntryTest, RefusesArgumentsThatSayMoreThanTheyShould) {
    const auto entry = Load("Exec=/bin/echo %u\n");
    ASSERT_TRUE(entry);
    Command command;
    for (const std::string& bad :
         {std::string("-option"), std::string("--"), std::string("a\nb"), std::string("a\0b", 3),
          std::string("a\x7f"), std::string("\x1b[0m"), std::string("\t")})
        EXPECT_EQ(B_BAD_VALUE, entry->MakeCommand({bad}, command)) << bad;
    EXPECT_EQ(B_BAD_VALUE, entry->MakeCommand({"good", "-bad"}, command));
    EXPECT_EQ(B_OK, entry->MakeCommand({"a-b \xc3\xa9 \xff"}, command));
}

TEST_F(DesktopEntryTest, OnlyInstalledProgramsCount) {
    EXPECT_TRUE(Load("Exec=echo %u\nTryExec=sh\nNoDisplay=true\n"));
    EXPECT_FALSE(Load("Exec=echo\nTryExec=no-such-program\n"));
    EXPECT_FALSE(Load("Exec=no-such-program %u\n"));
    EXPECT_FALSE(Load("Exec=echo\nHidden=true\n"));
    EXPECT_FALSE(Load("Exec=echo \"unfinished\n"));
    EXPECT_FALSE(Load("Exec=\n"));
    EXPECT_FALSE(Load("Type=Link\nExec=echo\n"));
}

TEST_F(DesktopEntryTest, FilesThatAreNoEntriesAreNotUsed) {
    const fs::path path = fHome.Path() / "bad.desktop";
    std::ofstream(path) << std::string(1000, '\0') << "\xff\xfe[[[";
    EXPECT_FALSE(DesktopEntry::Load(path));
    std::ofstream(path) << "[Desktop Entry]\nType=Application\nExec=echo\n#"
                        << std::string(kMaxDesktopFile, 'x');
    EXPECT_FALSE(DesktopEntry::Load(path));
    fs::remove(path);
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_FALSE(DesktopEntry::Load(path));
    EXPECT_FALSE(DesktopEntry::Load(fHome.Path()));
    EXPECT_FALSE(DesktopEntry::Load(""));
}

} // namespace

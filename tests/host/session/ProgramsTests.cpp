// Which program stands for what, and the commands that start it.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "host/session/programs/Programs.h"
#include "tests/support/TemporaryHome.h"

namespace fs = std::filesystem;
using namespace host;
using namespace std::literals;

namespace {

using Words = std::vector<std::string>;

const std::string kOpera = "application/x-vnd.operasoftware-opera";
const std::string kNetPositive = "application/x-vnd.Be-NPOS";
const std::string kTracker = "application/x-vnd.Be-TRAK";
const std::string kMissing = "TryExec=no-such-program\n";
const std::string kDefaults = "[Default Applications]\n";

class ProgramsTest : public testing::Test {
protected:
    static void Write(const fs::path& path, const std::string& content) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }
    static void WriteEntry(const fs::path& path, const std::string& keys) {
        Write(path, "[Desktop Entry]\nType=Application\nName=x\n" + keys);
    }
    void Install(const std::string& id, const std::string& keys = "") {
        WriteEntry(own / (id + ".desktop"), "Exec=echo\n" + keys);
    }
    void InstallForAll(const std::string& id, const std::string& keys = "") {
        WriteEntry(all / (id + ".desktop"), "Exec=echo\n" + keys);
    }
    void Choose(const std::string& lines) { Write(home.Config() / "mimeapps.list", lines); }

    // The entry file found, without its folders and ending; empty if there is none.
    static std::string Find(const std::string& signature, Wanted wanted = Wanted::Installed) {
        const auto program = FindProgramFor(signature, wanted);
        return program ? fs::path(program->Path()).stem().string() : "";
    }

    std::optional<DesktopEntry> Load(const std::string& keys) {
        WriteEntry(home.Path() / "x.desktop", keys);
        return DesktopEntry::Load(home.Path() / "x.desktop");
    }
    // The command for these arguments without its first word, which is /bin/echo.
    Words Expand(const std::string& exec, const Words& arguments) {
        const auto entry = Load("Exec=/bin/echo " + exec + "\n");
        Command command;
        if (!entry || entry->MakeCommand(arguments, command) != B_OK || command.arguments.empty())
            return {"(no command)"};
        return {command.arguments.begin() + 1, command.arguments.end()};
    }

    test::TemporaryHome home;
    const fs::path own = home.Data() / "applications";
    const fs::path all = home.Path() / "share/applications";
};

TEST_F(ProgramsTest, TheLinkIsOneArgument) {
    const Words link = {"http://x/?a=1&b=%u $(x) \"q\""};
    for (const char* code : {"%u", "%U", "%f", "%F", "", "%u %U"})
        EXPECT_EQ(link, Expand(code, link)) << code;
    EXPECT_EQ((Words{"--new", "--url=" + link[0], "end"}), Expand("--new --url=%u end", link));
    EXPECT_EQ((Words{"a b", "100%", link[0]}), Expand("\"a b\" 100%% %u", link));
    EXPECT_EQ((Words{"http://1"}), Expand("%u", {"http://1", "http://2"}));
    EXPECT_EQ((Words{"-a", "", "z"}), Expand("-a %u \"\" %U z", {}));
    EXPECT_EQ((Words{"a-b \xc3\xa9 \xff"}), Expand("%u", {"a-b \xc3\xa9 \xff"}));
    // What says more than it should is refused.
    for (const std::string& bad :
         {"-option"s, "--"s, "a\nb"s, "a\0b"s, "a\x7f"s, "\x1b[0m"s, "\t"s})
        EXPECT_EQ((Words{"(no command)"}), Expand("%u", {"good", bad})) << bad;
}

TEST_F(ProgramsTest, OnlyReadableEntriesOfInstalledProgramsCount) {
    EXPECT_TRUE(Load("Exec=echo %u\nTryExec=sh\nNoDisplay=true\n"));
    const std::string tooLong = "Exec=echo\n#" + std::string(kMaxDesktopFile, 'x');
    for (const std::string& bad :
         {"Exec=echo\n" + kMissing, "Exec=no-such-program %u\n"s, "Exec=echo\nHidden=true\n"s,
          "Exec=echo \"unfinished\n"s, "Exec=\n"s, "Type=Link\nExec=echo\n"s, "\0\xff\xfe[[["s,
          tooLong})
        EXPECT_FALSE(Load(bad)) << bad.substr(0, 80);
    const fs::path pipe = home.Path() / "pipe.desktop";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    EXPECT_FALSE(DesktopEntry::Load(pipe));
    EXPECT_FALSE(DesktopEntry::Load(home.Path()));
}

TEST_F(ProgramsTest, OperaIsTheFirstInstalledOfItsPackages) {
    EXPECT_EQ("", Find(kOpera));
    for (const char* package : {"opera-beta", "com.opera.Opera", "opera"}) {
        InstallForAll(package);
        EXPECT_EQ(package, Find(kOpera));
    }
    // One that cannot be used gives way to the next, even if it hides a usable one of all users.
    Install("opera", kMissing);
    EXPECT_EQ("com.opera.Opera", Find(kOpera));
}

TEST_F(ProgramsTest, TypesHaveTheDesktopsDefaults) {
    for (const char* name : {"https", "http", "ftp"})
        Install(name);
    Choose(kDefaults + "x-scheme-handler/https=https.desktop\nx-scheme-handler/http=http.desktop\n"
                       "x-scheme-handler/ftp=gone.desktop;ftp.desktop;\n");
    EXPECT_EQ("ftp", Find("application/x-vnd.Be.URL.ftp"));
    EXPECT_EQ("https", Find(kNetPositive));
    Install("https", kMissing);
    EXPECT_EQ("http", Find(kNetPositive));
    EXPECT_EQ("https", Find(kNetPositive, Wanted::Any));
}

TEST_F(ProgramsTest, TheUsersChoiceGoesBeforeTheSystemsAndThatBeforeWhatIsRegistered) {
    for (const char* name : {"first", "second", "added", "systems", "desktops", "mine"})
        Install(name);
    const fs::path system = home.Path() / "etc";
    const auto with = [&](const fs::path& file, const std::string& group, const char* list) {
        Write(file, group + "\ninode/directory = " + list + ".desktop\r\n");
        return Find(kTracker);
    };
    setenv("XDG_CURRENT_DESKTOP", "Odd:GNOME", 1);
    EXPECT_EQ("first", with(all / "mimeinfo.cache", "[MIME Cache]", "first.desktop;second"));
    EXPECT_EQ("second", with(own / "mimeapps.list", "[Removed Associations]", "first"));
    EXPECT_EQ("added", with(own / "mimeapps.list", "[Added Associations]", "added"));
    EXPECT_EQ("systems", with(system / "mimeapps.list", kDefaults, "systems"));
    EXPECT_EQ("desktops", with(system / "gnome-mimeapps.list", kDefaults, "desktops"));
    const std::string garbage = "\xff garbage\n[Default Applications\n\n" + kDefaults + "=";
    EXPECT_EQ("mine", with(home.Config() / "mimeapps.list", garbage, "mine"));
    unsetenv("XDG_CURRENT_DESKTOP");
}

TEST_F(ProgramsTest, AnEntryWithTheSignatureGoesBeforeAllAtOnce) {
    const std::string key = "X-Be-Signature=" + kOpera + "\n";
    InstallForAll("z-own", "X-Be-Signature=" + kNetPositive + "\n");
    InstallForAll("opera");
    EXPECT_EQ("z-own", Find(kNetPositive));
    for (const auto& [keys, opera] : {std::pair{""s, "opera"},
                                      {"NoDisplay=true\n" + key, "own"},
                                      {"Hidden=true\n" + key, "opera"}}) {
        Install("z/own", keys);
        EXPECT_EQ(opera, Find(kOpera)) << keys;
        EXPECT_EQ("", Find(kNetPositive)) << "hidden by the user's entry of the same id";
    }
    fs::remove_all(own);
    EXPECT_EQ("z-own", Find(kNetPositive));
}

TEST_F(ProgramsTest, HostileFoldersEnd) {
    fs::create_directories(own / "opera.desktop");
    for (char name = 'a'; name < 'k'; name++)
        fs::create_directory_symlink(own, own / std::string(1, name));
    fs::create_symlink(own / "loop.desktop", own / "loop.desktop");
    Choose(kDefaults + "inode/directory=../../../etc/passwd;/etc/x.desktop;" +
           std::string(5000, '-') + ".desktop\n");
    for (const std::string& signature : {kOpera, kNetPositive, kTracker})
        EXPECT_EQ("", Find(signature)) << signature;
}

} // namespace

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/session/programs/Programs.h"
#include "tests/support/TemporaryHome.h"

namespace fs = std::filesystem;
using namespace host;

namespace {

constexpr const char* kOpera = "application/x-vnd.operasoftware-opera";
constexpr const char* kNetPositive = "application/x-vnd.Be-NPOS";
constexpr const char* kTracker = "application/x-vnd.Be-TRAK";

class ProgramsTest : public testing::Test {
protected:
    void Write(const fs::path& path, const std::string& content) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }
    void Install(const std::string& file, const std::string& keys = "") {
        Write(fHome.Data() / "applications" / file,
              "[Desktop Entry]\nType=Application\nName=x\nExec=echo\n" + keys);
    }
    void InstallForAll(const std::string& file, const std::string& keys = "") {
        Write(fHome.Path() / "share/applications" / file,
              "[Desktop Entry]\nType=Application\nName=x\nExec=echo\n" + keys);
    }
    void Choose(const std::string& lines) { Write(fHome.Config() / "mimeapps.list", lines); }

    // The entry file found, without its folders; empty if there is none.
    std::string Find(const std::string& signature, Wanted wanted = Wanted::Installed) {
        const auto program = FindProgramFor(signature, wanted);
        return program ? fs::path(program->Path()).filename().string() : "";
    }

    test::TemporaryHome fHome;
};

TEST_F(ProgramsTest, OperaIsTheFirstInstalledOfItsPackages) {
    EXPECT_EQ("", Find(kOpera));
    const std::vector<std::string> packages = {
        "opera-developer", "opera-beta",      "opera-stable", "opera_opera",
        "com.opera.opera", "com.opera.Opera", "opera"};
    for (const std::string& package : packages) {
        InstallForAll(package + ".desktop");
        EXPECT_EQ(package + ".desktop", Find(kOpera));
    }
    // One that cannot be used gives way to the next, also if it hides a usable one of all users.
    Install("opera.desktop", "TryExec=no-such-program\n");
    EXPECT_EQ("com.opera.Opera.desktop", Find(kOpera));
}

TEST_F(ProgramsTest, TypesHaveTheDesktopsDefaults) {
    for (const char* name : {"https", "http", "mail", "ftp", "files"})
        Install(std::string(name) + ".desktop");
    Choose("[Default Applications]\nx-scheme-handler/https=https.desktop\n"
           "x-scheme-handler/http=http.desktop\nx-scheme-handler/mailto=mail.desktop;\n"
           "x-scheme-handler/ftp=gone.desktop;ftp.desktop\ninode/directory=files.desktop\n");
    EXPECT_EQ("https.desktop", Find(kNetPositive));
    EXPECT_EQ("https.desktop", Find("text/html"));
    EXPECT_EQ("mail.desktop", Find("text/x-email"));
    EXPECT_EQ("ftp.desktop", Find("application/x-vnd.Be.URL.ftp"));
    EXPECT_EQ("files.desktop", Find(kTracker));
    EXPECT_EQ("", Find("application/x-vnd.unknown"));
    EXPECT_EQ("", Find(""));
    Install("https.desktop", "TryExec=no-such-program\n");
    EXPECT_EQ("http.desktop", Find(kNetPositive));
    EXPECT_EQ("https.desktop", Find(kNetPositive, Wanted::Any));
}

TEST_F(ProgramsTest, TheUsersChoiceGoesBeforeTheSystems) {
    Install("mine.desktop");
    InstallForAll("theirs.desktop");
    InstallForAll("desktops.desktop");
    Write(fHome.Path() / "etc/mimeapps.list",
          "[Default Applications]\ninode/directory=theirs.desktop\n");
    EXPECT_EQ("theirs.desktop", Find(kTracker));
    setenv("XDG_CURRENT_DESKTOP", "Odd:GNOME", 1);
    Write(fHome.Path() / "etc/gnome-mimeapps.list",
          "[Default Applications]\ninode/directory=desktops.desktop\n");
    EXPECT_EQ("desktops.desktop", Find(kTracker));
    unsetenv("XDG_CURRENT_DESKTOP");
    Choose("\xff garbage\n[Default Applications\n\n[Default Applications]\n=\n"
           "inode/directory = mine.desktop\r\n");
    EXPECT_EQ("mine.desktop", Find(kTracker));
}

TEST_F(ProgramsTest, WithoutAChoiceAnInstalledProgramThatIsRegisteredIsTaken) {
    InstallForAll("a.desktop");
    InstallForAll("b.desktop");
    Write(fHome.Path() / "share/applications/mimeinfo.cache",
          "[MIME Cache]\ninode/directory=a.desktop;b.desktop;\n");
    EXPECT_EQ("a.desktop", Find(kTracker));
    Choose("[Removed Associations]\ninode/directory=a.desktop;\n");
    EXPECT_EQ("b.desktop", Find(kTracker));
    Choose("[Added Associations]\ninode/directory=a.desktop;\n");
    EXPECT_EQ("a.desktop", Find(kTracker));
}

TEST_F(ProgramsTest, AnEntryWithTheSignatureGoesBeforeAll) {
    Install("opera.desktop");
    Install("z/own.desktop", std::string("NoDisplay=true\nX-Be-Signature=") + kOpera + "\n");
    EXPECT_EQ("own.desktop", Find(kOpera));
    InstallForAll("z-own.desktop", std::string("X-Be-Signature=") + kNetPositive + "\n");
    EXPECT_EQ("", Find(kNetPositive)) << "hidden by the user's entry of the same id";
    InstallForAll("any.desktop", "X-Be-Signature=application/x-vnd.any\n");
    EXPECT_EQ("any.desktop", Find("application/x-vnd.any"));
    Install("z/own.desktop", std::string("Hidden=true\nX-Be-Signature=") + kOpera + "\n");
    EXPECT_EQ("opera.desktop", Find(kOpera));
}

TEST_F(ProgramsTest, ChangesAreSeenAtOnce) {
    const std::string key = std::string("X-Be-Signature=") + kOpera + "\n";
    for (int round = 0; round < 3; round++) {
        Install("opera.desktop");
        EXPECT_EQ("opera.desktop", Find(kOpera));
        Install("chosen.desktop", "Comment=" + std::to_string(round) + "\n");
        EXPECT_EQ("opera.desktop", Find(kOpera));
        Install("chosen.desktop", key);
        EXPECT_EQ("chosen.desktop", Find(kOpera));
        fs::remove(fHome.Data() / "applications/opera.desktop");
        fs::remove(fHome.Data() / "applications/chosen.desktop");
        EXPECT_EQ("", Find(kOpera));
    }
}

TEST_F(ProgramsTest, HostileFoldersEnd) {
    const fs::path applications = fHome.Data() / "applications";
    fs::create_directories(applications);
    for (char name = 'a'; name < 'k'; name++)
        fs::create_directory_symlink(applications, applications / std::string(1, name));
    fs::create_symlink(applications / "loop.desktop", applications / "loop.desktop");
    fs::create_directory(applications / "opera.desktop");
    EXPECT_EQ("", Find(kOpera));
    EXPECT_EQ("", Find(kNetPositive));
    Choose("[Default Applications]\ninode/directory=../../../etc/passwd;/etc/x.desktop;" +
           std::string(5000, '-') + ".desktop\n");
    EXPECT_EQ("", Find(kTracker));
}

} // namespace

// The subcommands that read and change single bookmarks, and what a person sees of errors.

#include "tests/quillbarctl/ControlTest.h"
#include "tests/support/RecordedApps.h"
#include "tests/support/Wait.h"

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

namespace {

using CommandTest = ControlTest;

TEST_F(CommandTest, WrongUseIsStatusTwoAndChangesNothing) {
    for (const char* wrong :
         {"", "nothing", "list 10", "list -1", "list --all", "open 3", "open 3 x", "add",
          "add http://a/ --slot 3", "add http://a/ --folder 3 --replace", "import",
          "import x --folder 12", "autostart", "autostart maybe", "menu", "menu 10"}) {
        std::istringstream line(wrong);
        const std::vector<std::string> words(std::istream_iterator<std::string>(line), {});
        EXPECT_EQ(Run(words), 2) << wrong;
        EXPECT_THAT(Errors(), StartsWith("quillbarctl: "));
        EXPECT_THAT(Output(), IsEmpty());
    }
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(Output(), "quillbarctl " QUILLBAR_VERSION "\n");
    EXPECT_EQ(Run({"--help"}), 0);
    for (const char* word : {"list", "open", "add", "import", "export", "autostart"})
        EXPECT_THAT(Output(), HasSubstr(std::string("\n  ") + word));
    EXPECT_FALSE(fs::exists(Root()));
    EXPECT_EQ(Run({"menu", "1"}), 1);
    EXPECT_THAT(Errors(), HasSubstr("quillbarctl: Quillbar does not run"));
}

TEST_F(CommandTest, ListsWhatTheBarShowsInLinesThatStayLines) {
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_FALSE(fs::exists(Root()));
    MakeBookmark(Root() / "3 - News/4 - a\tb\\c\x1b[31m\xc2\x9b", "http://a/\n", "k\xff");
    for (const char* name :
         {"12 - no slot", "3 a", " 3 - a", "-3 a", "deeper/5 - no", "8-no -  blank"})
        MakeBookmark(Root() / "3 - News" / name, "http://b/");
    MakeBookmark(At("7 - Elsewhere"), "http://linked/", "l");
    fs::create_directory_symlink(At("elsewhere"), Root() / "3 - News/6 - dangling");
    fs::create_symlink(At("7 - Elsewhere"), Root() / "3 - News/link");
    fs::create_directories(Root() / "0 -");
    std::ofstream(Root() / "3 - News/0 - Notes");
    std::ofstream(Root() / "3 - News/9 -");
    EXPECT_THAT(Lines(), ElementsAre("3\t0\tNotes\t\t",
                                     "3\t4\ta\\tb\\\\c\\x1b[31m\\xc2\\x9b\thttp://a/\\n\tk\\xff",
                                     "3\t7\tElsewhere\thttp://linked/\tl",
                                     "3\t8\tno -  blank\thttp://b/\t", "3\t9\t\t\t"));
    EXPECT_EQ(Run({"list", "4"}), 0);
    EXPECT_THAT(Output(), IsEmpty());
    EXPECT_EQ(Run({"list", "3", "--json"}), 0);
    EXPECT_THAT(Output(), HasSubstr(R"("url": "http://linked/")"));
    EXPECT_THAT(Output(), HasSubstr("\"name\": \"a\\tb\\\\c\\u001b[31m"));
    EXPECT_THAT(Output(), HasSubstr("\"keywords\": \"k\xef\xbf\xbd\""));
}

TEST_F(CommandTest, WhatCannotBeReadOrPrintedIsStatusOne) {
    std::ofstream(Root()).flush();
    EXPECT_EQ(Run({"list"}), 1);
    EXPECT_THAT(Errors(), AllOf(StartsWith("quillbarctl: "), HasSubstr(Root().string())));
    fs::remove(Root());
    ChildProcess full({.arguments = {QUILLBARCTL_BINARY, "export"},
                       .output = "/dev/full",
                       .errors = At("errors")});
    EXPECT_EQ(full.Wait(), 1);
    EXPECT_THAT(Errors(), HasSubstr("standard output"));
}

TEST_F(CommandTest, OpensInTheChosenBrowserAndLeavesTheSettingsAlone) {
    RecordedApps apps(fHome);
    MakeBookmark(Root() / "3 - News/4 - Daily", "http://daily/?a=$(x) b");
    MakeBookmark(Root() / "3 - News/5 - Option", "--option");
    EXPECT_EQ(Run({"open", "3", "4"}), 1);
    EXPECT_THAT(Errors(), HasSubstr("not installed"));

    apps.InstallBrowser();
    apps.Install("opera");
    size_t launches = 0;
    const std::pair<std::string, std::string> cases[] = {
        {R"({"what":0,"fields":[{"name":"browser","type":"int32","values":[0]}]})", "opera"},
        {"no settings", "browser"}};
    for (const auto& [settings, browser] : cases) {
        Write(".config/Quillbar.settings", settings);
        EXPECT_EQ(Run({"list"}), 0);
        EXPECT_EQ(Run({"open"}, Output()), 0) << Errors();
        EXPECT_THAT(apps.WaitForLaunches(++launches).back(),
                    (RecordedApps::Launch{browser, {"http://daily/?a=$(x) b"}}));
        EXPECT_EQ(Read(".config/Quillbar.settings"), settings);
    }
    for (const char* input : {"", "\n", "3\n", "3 4\n", "34\t5\n", "x\t4\t\n"})
        EXPECT_EQ(Run({"open"}, input), 1) << input;
    EXPECT_EQ(Run({"open", "3", "5"}), 1);
    EXPECT_EQ(Run({"open", "3", "6"}), 1);
    EXPECT_THAT(Errors(), HasSubstr("empty"));
    EXPECT_EQ(apps.Launches().size(), launches);
}

TEST_F(CommandTest, AddsIntoTheFirstEmptySlotAsTheWindowDoes) {
    MakeBookmark(Root() / "0 - Full/0 - x", "http://x/");
    for (int slot = 1; slot < 10; ++slot)
        std::ofstream(Root() / ("0 - Full/" + std::to_string(slot) + " - y"));
    MakeBookmark(Root() / "2 - News/0 - x", "http://x/");
    EXPECT_EQ(Run({"add", "https://a.example/p/"}), 0) << Errors();
    EXPECT_EQ(Run({"add", "http://b/", "--name", "B b", "--keywords", "k 1", "--folder", "2"}), 0);
    EXPECT_EQ(Run({"add", "http://c/", "--name", "", "--folder", "2", "--slot", "7"}), 0);
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_EQ(Run({"list", "2"}), 0);
    const std::string lines =
        "2\t0\tx\thttp://x/\t\n2\t1\tB b\thttp://b/\tk 1\n2\t7\t\thttp://c/\t\n";
    EXPECT_EQ(Output(), lines);
    EXPECT_EQ(GetAttribute(Root() / "2 - News/1 - B b", "META:title"), std::string("B b\0", 4));
    EXPECT_THAT(NamesIn(Root() / "1 -"), ElementsAre("0 - a.example p"));

    EXPECT_EQ(Run({"add", "http://d/", "--folder", "0"}), 1);
    EXPECT_THAT(Errors(), HasSubstr("folder 0 is full"));
    EXPECT_EQ(Run({"add", "http://d/", "--folder", "2", "--slot", "1"}), 1);
    EXPECT_THAT(Errors(), AllOf(HasSubstr("B b"), HasSubstr("--replace")));
    EXPECT_EQ(Run({"list", "2"}), 0);
    EXPECT_EQ(Output(), lines);
}

TEST_F(CommandTest, WhatIsReplacedIsInTheTrash) {
    MakeBookmark(Root() / "2 - News/1 - Old", "http://old/", "k");
    MakeBookmark(At("1 - Target"), "http://target/");
    fs::create_symlink(At("1 - Target"), Root() / "2 - News/link");
    const std::vector<std::string> add = {"add", "http://new/", "--name", "New",      "--folder",
                                          "2",   "--slot",      "1",      "--replace"};
    EXPECT_EQ(Run(add), 0) << Errors();
    EXPECT_THAT(Lines(), ElementsAre("2\t1\tNew\thttp://new/\t"));
    // Nothing that could hide the new one is left beside it; a link's target is not its own.
    EXPECT_THAT(NamesIn(Root() / "2 - News"), ElementsAre("1 - New"));
    EXPECT_TRUE(fs::exists(At("1 - Target")));
    const fs::path trash = fHome.Data() / "Trash";
    EXPECT_THAT(NamesIn(trash / "files"), UnorderedElementsAre("1 - Old", "link"));
    EXPECT_EQ(GetAttribute(trash / "files/1 - Old", "META:keyw"), std::string("k\0", 2));
    EXPECT_TRUE(fs::exists(trash / "info/1 - Old.trashinfo"));

    // Without a trash the old one stays, and nothing comes beside it.
    fs::remove_all(trash);
    std::ofstream(trash).flush();
    EXPECT_EQ(Run(add), 1);
    EXPECT_THAT(Errors(), HasSubstr("trash"));
    EXPECT_THAT(NamesIn(Root() / "2 - News"), ElementsAre("1 - New"));
}

TEST_F(CommandTest, WhatCannotBeABookmarkIsRefusedAndANameMadeSafe) {
    for (const char* url : {"", "-x", "javascript:alert(1)", "http://a/\n"}) {
        EXPECT_EQ(Run({"add", "--", url}), 1) << url;
        EXPECT_THAT(Errors(), HasSubstr("not taken")) << url;
    }
    EXPECT_FALSE(fs::exists(Root()));
    const std::string longName = "\xc3\xa9" + std::string(298, 'x');
    EXPECT_EQ(Run({"add", "http://a/", "--name", "a/../b\tc\x01\xff"}), 0);
    EXPECT_THAT(Errors(), HasSubstr("becomes \"a-..-b c\xef\xbf\xbd\""));
    EXPECT_EQ(Run({"add", "http://b/", "--name", longName}), 0);
    EXPECT_THAT(Errors(), HasSubstr("becomes"));
    EXPECT_THAT(NamesIn(Root() / "0 -"),
                UnorderedElementsAre("0 - a-..-b c\xef\xbf\xbd", "1 - " + longName.substr(0, 251)));
    // More than the disk keeps with a file: nothing is left of it.
    EXPECT_EQ(Run({"add", "http://" + std::string(100'000, 'x')}), 1);
    EXPECT_EQ(NamesIn(Root() / "0 -").size(), 2u);
}

TEST_F(CommandTest, RunsAtOneTimeTakeDifferentSlots) {
    std::vector<std::unique_ptr<ChildProcess>> runs;
    for (int i = 0; i < 12; ++i)
        runs.push_back(std::make_unique<ChildProcess>(ChildProcess::Options{
            .arguments = {QUILLBARCTL_BINARY, "add", "http://" + std::to_string(i) + "/"}}));
    for (auto& run : runs)
        EXPECT_EQ(run->Wait(), 0);
    EXPECT_EQ(Lines().size(), 12u);
}

TEST_F(CommandTest, AutostartWritesTheDesktopsEntry) {
    const fs::path entry = fHome.Config() / "autostart/quillbar.desktop";
    const auto status = [&] {
        EXPECT_EQ(Run({"autostart", "status"}), 0);
        return Output();
    };
    EXPECT_EQ(status(), "off\n");
    EXPECT_EQ(Run({"autostart", "on"}), 0) << Errors();
    const std::string on = "on\t\"" QUILLBAR_BINARY "\"\n";
    EXPECT_EQ(status(), on);
    EXPECT_THAT(Errors(), IsEmpty());
    // As desktops switch it off in their own settings; what else is in it stays.
    std::ofstream(entry, std::ios::app) << "Hidden=true\nX-GNOME-Autostart-Delay=3\n";
    EXPECT_EQ(status(), "off\n");
    EXPECT_EQ(Run({"autostart", "on"}), 0);
    EXPECT_EQ(status(), on);
    EXPECT_THAT(Read(".config/autostart/quillbar.desktop"), HasSubstr("Delay=3"));
    EXPECT_EQ(Run({"autostart", "off"}), 0);
    EXPECT_FALSE(fs::exists(entry));

    // The system's entry counts where the user has none.
    fs::create_directories(At("etc/autostart"));
    Write("etc/autostart/quillbar.desktop", "[Desktop Entry]\nType=Application\nExec=gone-away\n");
    EXPECT_EQ(status(), "on\tgone-away\n");
    EXPECT_THAT(Errors(), HasSubstr("not there"));
    EXPECT_EQ(Run({"autostart", "off"}), 0);
    EXPECT_EQ(status(), "off\n");
    EXPECT_TRUE(fs::exists(At("etc/autostart/quillbar.desktop")));
}

} // namespace

// Bookmarks from and for other programs.

#include "tests/quillbarctl/ControlTest.h"
#include "tests/support/Wait.h"

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

std::string Link(const std::string& url, const std::string& name) {
    return "<DT><A HREF=\"" + url + "\">" + name + "</A>\n";
}

std::string Links(const std::string& word, int count) {
    std::string links;
    for (int i = 0; i < count; ++i)
        links += Link("http://" + word + std::to_string(i) + "/", word + std::to_string(i));
    return links;
}

std::string BrowserFolder(const std::string& name, const std::string& content) {
    return "<DT><H3 ADD_DATE=\"1\">" + name + "</H3>\n<DL><p>\n" + content + "</DL><p>\n";
}

class ImportTest : public ControlTest {
protected:
    int Import(const std::string& text, std::vector<std::string> options = {}) const {
        Write("file", text);
        options.insert(options.begin(), {"import", At("file")});
        return Run(options);
    }
    int ImportHtml(const std::string& lists, const std::vector<std::string>& options = {}) const {
        return Import("<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<!-- a comment -->\n"
                      "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
                      "<TITLE>Bookmarks</TITLE>\n<H1>Bookmarks</H1>\n<DL><p>\n" +
                          lists + "</DL><p>\n",
                      options);
    }
    std::string Exported(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments = {"export"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(Run(arguments), 0) << Errors();
        return Output();
    }
    // Of the folders' directories.
    std::vector<std::string> FolderNames() const {
        std::vector<std::string> names = NamesIn(Root());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(ImportTest, ABrowsersFoldersStayTogether) {
    MakeBookmark(Root() / "0 - Mine/0 - kept", "http://kept/");
    const std::string html =
        "<DT><A HREF=\"http://root/?a=1&amp;b=2\" SHORTCUTURL=\"r\" TAGS=\"x,y\" "
        "ICON=\"data:image/png;base64,AA\">The <b>root</b> &amp; more</A>\n<DD>of a text\n" +
        BrowserFolder("News", Link("http://n1/", "n1") +
                                  BrowserFolder("Inner", Link("http://i/", "i")) + "<HR>" +
                                  Link("http://n2/", " n2\n")) +
        BrowserFolder("Mine", Link("http://m/", "m")) + BrowserFolder("Empty", "");
    EXPECT_EQ(ImportHtml(html), 0) << Errors();
    const auto lines =
        ElementsAre("0\t0\tkept\thttp://kept/\t", "0\t1\tm\thttp://m/\t",
                    "1\t0\tThe root & more\thttp://root/?a=1&b=2\tr,x,y", "2\t0\tn1\thttp://n1/\t",
                    "2\t1\tn2\thttp://n2/\t", "3\t0\ti\thttp://i/\t");
    EXPECT_THAT(Lines(), lines);
    EXPECT_THAT(FolderNames(), ElementsAre("0 - Mine", "1 -", "2 - News", "3 - Inner"));
    // What is there does not come twice.
    EXPECT_EQ(ImportHtml(html), 0);
    EXPECT_THAT(Errors(), HasSubstr("5 were there already"));
    EXPECT_THAT(Lines(), lines);
}

TEST_F(ImportTest, AFolderIsDividedOnlyWhereNoneHasRoomForIt) {
    const std::string html = BrowserFolder("Long", Links("long", 25)) +
                             BrowserFolder("Short", Links("short", 5)) +
                             BrowserFolder("More", Links("more", 80));
    EXPECT_EQ(ImportHtml(html), 1);
    EXPECT_THAT(Errors(), AllOf(HasSubstr("100 came in"), HasSubstr("10 found no room"),
                                HasSubstr("no room for \"more79\" (http://more79/)")));
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 100u);
    EXPECT_EQ(lines[24], "2\t4\tlong24\thttp://long24/\t");
    EXPECT_EQ(lines[25].substr(0, 10), "2\t5\tmore60");
    EXPECT_EQ(lines[30], "3\t0\tshort0\thttp://short0/\t");
}

TEST_F(ImportTest, ADryRunSaysTheSameAndOneFolderIsAllThatIsUsed) {
    const std::string html = BrowserFolder("A", Links("a", 8)) + BrowserFolder("B", Links("b", 8));
    EXPECT_EQ(ImportHtml(html, {"--dry-run", "--folder", "4"}), 1);
    EXPECT_THAT(Errors(), HasSubstr("10 would come in"));
    const std::string planned = Output();
    EXPECT_FALSE(fs::exists(Root()));
    EXPECT_EQ(ImportHtml(html, {"--folder", "4"}), 1);
    EXPECT_EQ(Output(), planned);
    EXPECT_THAT(FolderNames(), ElementsAre("4 - A"));
    EXPECT_EQ(Lines().size(), 10u);
}

TEST_F(ImportTest, JsonComesBackEqual) {
    using namespace std::string_literals;
    MakeBookmark(Root() / "3 - Ne\"ws/4 - Größe", "http://a/?x=1&y=\"2\"", "k 1");
    MakeBookmark(Root() / "3 - Ne\"ws/0 - plain", "http://p/");
    SetAttribute(Root() / "3 - Ne\"ws/0 - plain", "META:title", "plain\0"s);
    MakeBookmark(Root() / "9 -/9 - ", "http://last/");
    const fs::path file = Root() / "3 - Ne\"ws/4 - Größe";
    SetAttribute(file, "META:keyw", "no zero");
    SetAttribute(file, "META:title", "another");
    SetAttribute(file, "bytes", "\xff\0\x01"s);
    SetAttribute(file, "nothing", "");
    SetAttribute(file, "mime_type", "application/X-vnd.Be-bookmark\0"s);
    fs::create_directories(Root() / "5 - Empty");
    std::ofstream(Root() / "9 -/3 - notes");
    const std::string json = Exported({"--json"});
    EXPECT_THAT(Errors(), HasSubstr("\"notes\" is no bookmark"));
    fs::rename(Root(), At("old"));

    EXPECT_EQ(Import(json), 0) << Errors();
    EXPECT_EQ(Exported({"--json"}), json);
    EXPECT_THAT(FolderNames(), ElementsAre("3 - Ne\"ws", "5 - Empty", "9 -"));
    for (const char* name :
         {"mime_type", "META:url", "META:keyw", "META:title", "bytes", "nothing"})
        EXPECT_EQ(GetAttribute(file, name), GetAttribute(At("old") / "3 - Ne\"ws/4 - Größe", name))
            << name;
    EXPECT_EQ(GetAttribute(Root() / "9 -/9 - ", "META:title"), std::nullopt);
    EXPECT_EQ(Import(json), 0);
    EXPECT_THAT(Errors(), HasSubstr("0 came in, 3 were there already"));
}

TEST_F(ImportTest, JsonTakesItsOwnSlotsWhereTheyAreFree) {
    for (const char* name : {"0 - A/1 - twice", "4 - B/0 - twice", "0 - A/2 - a2", "4 - B/3 - b3"})
        MakeBookmark(Root() / name, "http://same/");
    const std::string json = Exported({"--json"});
    fs::rename(Root(), At("old"));
    for (int slot : {0, 1, 3, 4, 5, 6, 7, 8, 9})
        MakeBookmark(Root() / ("0 - Mine/" + std::to_string(slot) + " - mine"), "http://mine/");
    EXPECT_EQ(Import(json), 0) << Errors();
    // The last free one goes to the bookmark that had it, not to that before it, which lost its
    // own.
    EXPECT_EQ(Run({"list", "4"}), 0);
    EXPECT_EQ(Output(), "4\t0\ttwice\thttp://same/\t\n4\t3\tb3\thttp://same/\t\n");
    EXPECT_EQ(Run({"list", "0"}), 0);
    EXPECT_THAT(Output(), HasSubstr("0\t2\ta2\t"));
    EXPECT_EQ(Lines().size(), 13u);
    EXPECT_THAT(FolderNames(), testing::Contains("0 - Mine"));
}

TEST_F(ImportTest, HtmlComesBackWithNamesAddressesAndKeywords) {
    MakeBookmark(Root() / "0 - A & <B>/0 - \"x\" > y & Größe", "http://a/?x=1&y=\"2\"&lt;", "k, 1");
    MakeBookmark(Root() / "0 - A & <B>/1 - z", "http://z/");
    MakeBookmark(Root() / "1 - C/0 - c", "http://c/");
    const std::vector<std::string> lines = Lines();
    EXPECT_EQ(Run({"export", At("out.html")}), 0) << Errors();
    fs::remove_all(Root());
    EXPECT_EQ(Import(Read("out.html")), 0) << Errors();
    EXPECT_EQ(Lines(), lines);
    EXPECT_THAT(FolderNames(), ElementsAre("0 - A & <B>", "1 - C"));
    EXPECT_EQ(Exported(), Read("out.html"));
}

TEST_F(ImportTest, AnExportTakesItsPlaceWhole) {
    MakeBookmark(Root() / "0 - A/0 - a", "http://a/");
    Write("out", "old");
    fs::create_hard_link(At("out"), At("before"));
    EXPECT_EQ(Run({"export", At("out")}), 0);
    EXPECT_EQ(Read("before"), "old");
    EXPECT_THAT(Read("out"), HasSubstr("http://a/"));
    for (const fs::path& place : {At("missing/out"), fHome.Path(), fs::path("/dev/null")})
        EXPECT_EQ(Run({"export", place}), 1) << place;
}

TEST_F(ImportTest, HostileTextIsRefusedOrMadeSafeWithAWord) {
    const std::string start = R"({"quillbar":1,"folders":[{"bookmarks":[)";
    const std::string refused[] = {
        "",
        std::string("\0\0", 2),
        "{}",
        R"({"quillbar":2,"folders":[]})",
        R"({"quillbar":1,"folders":{}})",
        R"({"quillbar":1,"folders":[{"folder":10,"bookmarks":[]}]})",
        start + R"({"name":1,"url":"http://a/"}]}]})",
        start + R"({"name":"a\u0000","url":"http://a/"}]}]})",
        start + R"({"name":"a","url":"http://a/","slot":-1}]}]})",
        start + R"({"name":"a","url":"http://a/","attributes":{"x":{"hex":"1"}}}]}]})",
        R"({"quillbar":1,"folders":[],"x":)" + std::string(900'000, '[') +
            std::string(900'000, ']') + "}",
        "<A HREF=\"http://" + std::string(65 << 20, 'x') + "\">",
        "{\"quillbar\":\"" + std::string(9 << 20, 'x') + "\"}",
        Links("", 100'001),
    };
    for (const std::string& text : refused) {
        EXPECT_EQ(Import(text), 1) << text.substr(0, 80);
        EXPECT_THAT(Errors(), HasSubstr("is not taken: ")) << text.substr(0, 80);
        EXPECT_FALSE(fs::exists(Root())) << text.substr(0, 80);
    }
    EXPECT_EQ(Run({"import", At("missing")}), 1);
    EXPECT_EQ(Run({"import", fHome.Path()}), 1);

    EXPECT_EQ(ImportHtml(Link("javascript:alert(1)", "j") + Link("data:text/html,x", "d") +
                         Link("place:sort=1", "p") + Link("java&#10;script:x", "n") +
                         Link("-option", "o") + "<A>no address</A>" + Link("", "e") +
                         Link("http://s/", "a/../b&#1;\xff\t" + std::string(300, 'x')) +
                         Link("http://nameless/", "") + "<DT><A HREF=\"http://cut/\">end"),
              1);
    EXPECT_THAT(Errors(), AllOf(HasSubstr("3 came in"), HasSubstr("5 were not taken"),
                                HasSubstr("becomes"), HasSubstr("not UTF-8")));
    const std::string name = "a-..-b\xef\xbf\xbd " + std::string(300, 'x');
    EXPECT_THAT(Lines(),
                ElementsAre("0\t0\t" + name.substr(0, 251) + "\thttp://s/\t",
                            "0\t1\tnameless\thttp://nameless/\t", "0\t2\tend\thttp://cut/\t"));
}

TEST_F(ImportTest, ManyAndDeepOnesTakeLittleTime) {
    std::string many, start, end;
    for (int folder = 0; folder < 4000; ++folder)
        many += BrowserFolder("f" + std::to_string(folder),
                              Links("b" + std::to_string(folder) + "-", 20));
    // The square of their number would take minutes, and Run() does not wait for as long.
    EXPECT_EQ(ImportHtml(many, {"--dry-run"}), 1);
    EXPECT_THAT(Errors(), HasSubstr("100 would come in"));
    EXPECT_THAT(Errors(), HasSubstr("79900 found no room"));
    for (int i = 0; i < 90'000; ++i) {
        start += "<DL><DT><H3>d</H3><div>";
        end += "</div></DL>";
    }
    EXPECT_EQ(ImportHtml(start + Link("http://deep/", "deep") + end, {"--dry-run"}), 0);
    EXPECT_THAT(Errors(), HasSubstr("1 would come in"));
}

TEST_F(ImportTest, OneThatIsKilledLeavesWholeBookmarks) {
    Write("file", Links("all", 100));
    for (const char* reached : {"0 -/0 - all0", "3 -/0 - all30", "6 -/0 - all60"}) {
        fs::remove_all(Root());
        ChildProcess run = Start({"import", At("file")});
        EXPECT_TRUE(WaitUntil([&] { return fs::exists(Root() / reached); }));
        run.Kill();
        for (const auto& entry : fs::recursive_directory_iterator(Root())) {
            if (entry.is_directory() || entry.path().filename().string().starts_with("."))
                continue;
            for (const char* name : {"mime_type", "META:url", "META:keyw", "META:title"})
                EXPECT_TRUE(GetAttribute(entry.path(), name)) << entry << " " << name;
        }
    }
    EXPECT_EQ(Run({"import", At("file")}), 0) << Errors();
    EXPECT_EQ(Lines().size(), 100u);
    for (const std::string& folder : FolderNames())
        EXPECT_EQ(NamesIn(Root() / folder).size(), 10u) << "something is left";
}

} // namespace

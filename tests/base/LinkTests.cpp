// Links in the forms in which other programs give them.

#include <chrono>
#include <gtest/gtest.h>

#include "base/Utf8.h"
#include "base/links/Link.h"

using namespace std::string_literals;

namespace {

constexpr char kUrl[] = "https://a.example/b?c=d&e";

std::string Shown(const std::optional<Link>& link) {
    return link ? link->url + " | " + link->title : "none";
}

std::string BigEndian(std::string text) {
    for (size_t at = 0; at + 1 < text.size(); at += 2)
        std::swap(text[at], text[at + 1]);
    return text;
}

TEST(Link, IsTheAddressOfSomethingThatABrowserOpens) {
    for (const char* good :
         {kUrl, "HTTP://a", "ftp://u:p@a:21/", "file:///a/b%20c", "file:/a", "mailto:a@b.example",
          "https://[::1]/", "https://\u65e5\u672c.example/\u00e9", "gemini://a.example/"})
        EXPECT_TRUE(IsBookmarkUrl(good)) << good;
    const std::string longest = "http://" + std::string(kMaxUrl - 7, 'a');
    EXPECT_TRUE(IsBookmarkUrl(longest));
    EXPECT_FALSE(IsBookmarkUrl(longest + "a"));
    for (const char* bad : {"",
                            "http:",
                            "http:///a",
                            "http:a",
                            "://a",
                            "javascript:alert(1)",
                            "JavaScript://a/%0aalert(1)",
                            "data:text/html,a",
                            "view-source:http://a",
                            "file:a",
                            "mailto:",
                            "http://a b",
                            "http://a\nb",
                            "http://a\xff",
                            "http://a\x7f",
                            "http://a\xe2\x80\xa8",
                            "http://a\xc2\xa0",
                            " http://a",
                            "--http://a",
                            "a.example"})
        EXPECT_FALSE(IsBookmarkUrl(bad)) << bad;
    EXPECT_FALSE(IsBookmarkUrl("http://a\0b"s));
}

TEST(Link, OfABrowserHasATitleOrIsCalledByItsHost) {
    const std::string text = kUrl + "\nTh\u00e9 \U0001f600  page\t"s;
    const std::string expected = kUrl + " | Th\u00e9 \U0001f600 page"s;
    const std::string units = Utf16Of(text); // of this computer, which is little-endian
    EXPECT_EQ(Shown(LinkOfMozUrl(units)), expected);
    EXPECT_EQ(Shown(LinkOfMozUrl("\xff\xfe" + units)), expected);
    EXPECT_EQ(Shown(LinkOfMozUrl("\xfe\xff" + BigEndian(units))), expected);
    EXPECT_EQ(Shown(LinkOfMozUrl(BigEndian(units))), expected);
    EXPECT_EQ(Shown(LinkOfMozUrl(units + "\0\0\1\2"s)), expected) << "up to the NUL";
    EXPECT_EQ(Shown(LinkOfMozUrl(text)), expected);
    EXPECT_EQ(Shown(LinkOfMozUrl("\xef\xbb\xbf" + text)), expected);
    for (const std::string& titleless : {kUrl + ""s, kUrl + "\r\n"s, kUrl + "\n"s + kUrl})
        EXPECT_EQ(Shown(LinkOfMozUrl(titleless)), kUrl + " | a.example"s);
    EXPECT_EQ(Shown(LinkOfMozUrl("data:,a\nBad\n"s + kUrl + "\nGood")), kUrl + " | Good"s);
    EXPECT_EQ(Shown(LinkOfMozUrl("http://u@www.b/c\n")), "http://u@www.b/c | b");
    EXPECT_EQ(Shown(LinkOfMozUrl("file:///a/b.html\n \x01")), "file:///a/b.html | b.html");
    // Half a pair of units, half a unit, bytes that are no UTF-8.
    EXPECT_EQ(Shown(LinkOfMozUrl(Utf16Of("http://a\nb") + "\x00\xd8\x01"s)),
              "http://a | b\xef\xbf\xbd");
    EXPECT_EQ(Shown(LinkOfMozUrl("http://a\nb\xff")), "http://a | b\xef\xbf\xbd");
    const auto cut =
        LinkOfMozUrl("http://a\n" + std::string(999, 'x') + "\u00e9" + std::string(3000, 'y'));
    EXPECT_EQ(cut->title, std::string(999, 'x'));
    for (const std::string& none : {""s, "\0"s, "\xff\xfe"s, "\n\n"s, "javascript:a\nb"s, "a"s})
        EXPECT_EQ(Shown(LinkOfMozUrl(none)), "none");
}

TEST(Link, IsTheFirstGoodOneOfAListOrAllOfAText) {
    EXPECT_EQ(Shown(LinkOfUriList("# http://c\r\njavascript:a\r\n  http://a/ \r\nhttp://b\r\n")),
              "http://a/ | a");
    EXPECT_EQ(Shown(LinkOfUriList("#\n\ndata:,a")), "none");
    EXPECT_EQ(Shown(LinkOfText(" http://a/b \r\n")), "http://a/b | a");
    for (const char* none : {"http://a/b\nhttp://c", "see http://a/b", "#a0b0c0"})
        EXPECT_EQ(Shown(LinkOfText(none)), "none");
}

TEST(Link, OfHtmlIsItsFirstGoodAnchor) {
    const std::pair<const char*, const char*> cases[] = {
        {"<meta charset=utf-8><a href=\"http://a/?b&amp;c\">T&#233;<b>x</b> &lt;t&#x3e;\n</a>y",
         "http://a/?b&c | T\u00e9x <t>"},
        {"<A Class='x>y' HREF = 'http://a' >t</A>", "http://a | t"},
        {"<a href=http://a/b>t", "http://a/b | t"},
        {"<a href=' http://a '><img alt='</a>' src=x>t<a>u", "http://a | t"},
        {"<a\nhref='http://a'\n></a>", "http://a | a"},
        {"<!-- <a href='http://no'> --><p title=\"<a href='http://no'>\">1 < 2 <a "
         "href='http://a'>t",
         "http://a | t"},
        {"<a href='javascript:a'>no</a><a name=b>no</a><a href='/c'>no</a><a href='http://a'>t",
         "http://a | t"},
        {"<a href='http://a'>&bogus; &#0; &#xd800; &", "http://a | &bogus; &#0; \xef\xbf\xbd &"},
        {"<area href='http://a'>", "none"},
        {"<a href='http://a", "http://a | a"},
        {"<!-- <a href='http://a'>", "none"},
        {"<a href=", "none"},
    };
    for (const auto& [html, expected] : cases) {
        EXPECT_EQ(Shown(LinkOfHtml(html)), expected) << html;
        EXPECT_EQ(Shown(LinkOfHtml(Utf16Of(html))), expected) << html;
    }
}

TEST(Link, IsLookedForInTimeThatGrowsWithTheText) {
    const auto start = std::chrono::steady_clock::now();
    for (const char* part :
         {"<a ", "<a href=", "<a href='", "<", "&", "<!--", "<a href=http:", "="}) {
        std::string text;
        while (text.size() < (1 << 20))
            text += part;
        LinkOfHtml(text);
        LinkOfHtml("<a href=http://a>" + text);
        LinkOfUriList(text);
    }
    // A look back at every byte would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(Link, OfAFileIsInItsGroup) {
    EXPECT_TRUE(IsLinkFile("a.Desktop"));
    EXPECT_TRUE(IsLinkFile("a.url"));
    for (const char* name : {"desktop", ".url", "a.url.png", ""})
        EXPECT_FALSE(IsLinkFile(name)) << name;
    EXPECT_EQ(Shown(LinkOfFile("n.desktop", "# c\n[Desktop Entry]\nType=Link\nName[de]=Seite\n"
                                            "Name = A page\nURL=http://a/\n[Other]\nURL=http://b")),
              "http://a/ | A page");
    EXPECT_EQ(Shown(LinkOfFile("My page.url", "[Other]\r\nURL=http://b\r\n[InternetShortcut]\r\n"
                                              "IDList=\r\nURL=http://a/\r\n")),
              "http://a/ | My page");
    EXPECT_EQ(Shown(LinkOfFile("n.desktop", "[Desktop Entry]\nType=Application\nURL=http://a")),
              "none");
    EXPECT_EQ(Shown(LinkOfFile("n.desktop", "[Desktop Entry]\nType=Link\nURL=javascript:a")),
              "none");
    EXPECT_EQ(Shown(LinkOfFile("n.url", "URL=http://a")), "none");
    EXPECT_EQ(Shown(LinkOfFile("n.url", "[InternetShortcut]\n" + std::string(kMaxLinkFile, '#') +
                                            "\nURL=http://a")),
              "none");
}

} // namespace

// Dragging between the program and others.

#include <X11/keysym.h>
#include <random>

#include "base/Errors.h"
#include "host/x11/exchange/DragOffer.h"
#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

constexpr char kColorType[] = "application/x-color";

class DragTest : public X11Test {
protected:
    // A white colour chooser's.
    const std::string white = std::string(8, '\xff');

    // Drops what is offered.
    std::optional<bool> Drop(const std::map<std::string, Peer::Data>& forms) {
        partner.offered = forms;
        return partner.Drop(id, 110, 130);
    }

    TestWindow window = display.CreateShown(BarSpec({100, 100, 140, 300}));
    const xcb_window_t id = window.id;
    Peer partner{desk, {400, 100, 200, 200}};
};

using DropInTest = DragTest;

TEST_F(DropInTest, AColorAmongManyTypesIsReadOnceHoweverFarItIsDragged) {
    partner.offered = {{"UTF8_STRING", {"  #A0b0C0\n"}}};
    std::vector<std::string> types(2000, "text/html");
    types[900] = "UTF8_STRING";
    partner.Own("XdndSelection");
    partner.Enter(id, types);
    for (int y : {120, 160}) {
        partner.Move(id, 120, y);
        EXPECT_EQ(partner.AwaitStatus(), true);
    }
    partner.LetGo(id);
    EXPECT_EQ(partner.AwaitFinish(), true);
    EXPECT_EQ(partner.requests, 1u);
    EXPECT_EQ(window.events->Last<ColorDropped>().y, 60);
}

TEST_F(DropInTest, RefusesWhatIsNoColorAndWhatComesOutOfOrder) {
    for (const Peer::Data& data : {Peer::Data{white.substr(2), 16}, {white + "\xff\xff", 16}})
        EXPECT_EQ(Drop({{kColorType, data}}), false) << data.bytes.size();
    for (const char* text : {"", "#12345", "#1234567", "#12345g", "# 12345", "#+12345"})
        EXPECT_EQ(Drop({{"text/plain", {text}}}), false) << text;
    partner.Move(id, 110, 130); // has left
    EXPECT_EQ(partner.AwaitStatus(), false);
    partner.Enter(id, {kColorType});
    partner.LetGo(id); // at no place
    EXPECT_EQ(partner.AwaitFinish(), false);
    EXPECT_TRUE(window.events->All<ColorDropped>().empty());
}

class LinkTest : public DragTest {
protected:
    LinkTest() { window->AcceptLinks(); }

    LinkDropped Dropped() const { return window.events->Last<LinkDropped>(); }
};

TEST_F(LinkTest, IsTakenInTheMostTellingForm) {
    std::map<std::string, Peer::Data> offers = {
        {"text/x-moz-url", {std::string("\xff\xfeh\0t\0t\0p\0:\0/\0/\0m\0\n\0t\0", 22)}},
        {"text/uri-list", {"https://list/\r\n"}},
        {"text/html", {"<a href='https://html/'>t</a>"}},
        {"UTF8_STRING", {"https://text/"}}};
    for (const auto& [type, url] : {std::pair{"text/x-moz-url", "http://m"},
                                    {"text/uri-list", "https://list/"},
                                    {"text/html", "https://html/"},
                                    {"UTF8_STRING", "https://text/"}}) {
        EXPECT_EQ(Drop(offers), true);
        EXPECT_EQ(Dropped().link.url, url);
        offers[type] = {"javascript:alert(1)"}; // of no use from now on
    }
    EXPECT_EQ(Drop(offers), false);
    EXPECT_EQ(Drop({{"UTF8_STRING", {"#a0b0c0"}}}), true);
    EXPECT_EQ(window.events->All<ColorDropped>().size(), 1u);
    // Windows that do not ask for links.
    TestWindow other = display.CreateShown({.frame = {300, 400, 380, 500}});
    partner.offered = {{"UTF8_STRING", {"https://text/"}}};
    EXPECT_EQ(partner.Drop(other.id, 310, 410), false);
}

// Nothing is ever taken from the other program.
TEST_F(LinkTest, IsLinkedOrCopiedAndMayBeAFileOfThisMachine) {
    for (const auto& [action, agreed] : {std::pair{"XdndActionLink", "XdndActionLink"},
                                         {"XdndActionCopy", "XdndActionCopy"},
                                         {"XdndActionMove", "XdndActionCopy"}}) {
        partner.proposed = action;
        EXPECT_EQ(Drop({{"text/uri-list", {"file:///a/My%20page.url#x\n"}}}), true);
        EXPECT_EQ(partner.agreed, agreed);
    }
    EXPECT_EQ(Dropped().file, "/a/My page.url");
    EXPECT_EQ(Drop({{"text/uri-list", {"file://elsewhere/a.html"}}}), false);
    EXPECT_EQ(Drop({{"text/uri-list", {"file:///a/b.html"}}}), true);
    EXPECT_EQ(Dropped().file, "");
}

TEST_F(LinkTest, IsNotLookedForInWhatIsEndless) {
    const uint32 huge = 100u << 20;
    const Peer::Data endless[] = {
        {"http://a/" + std::string(3'000'000, 'a')},
        {std::string(reinterpret_cast<const char*>(&huge), 4), 32, "INCR"},
        {"http://" + std::string(5000, 'a')},
        {std::string(65536, '\0')},
        {std::string(65536, '\n')},
        {std::string(65536, '\xff')},
    };
    for (const Peer::Data& data : endless) {
        EXPECT_EQ(Drop({{"text/html", data}, {"UTF8_STRING", data}}), false) << data.bytes.size();
        EXPECT_EQ(Drop({{"text/x-moz-url", data}, {"UTF8_STRING", {"http://a/"}}}), true);
    }
    // The parts of a long one that come without an end.
    partner.offered.clear();
    partner.Own("XdndSelection");
    partner.Enter(id, {"UTF8_STRING"});
    partner.Move(id, 110, 130);
    auto request = partner.AwaitRequest();
    ASSERT_TRUE(request);
    partner.BeginParts(*request);
    int parts = 0;
    while (parts < 1000 && partner.AnswerPart(*request, std::string(10'000, 'a')))
        parts++;
    EXPECT_LT(parts, 10);
    partner.LetGo(id);
    EXPECT_EQ(partner.AwaitFinish(), false);
    // One that never answers is not asked for the next form.
    EXPECT_EQ(Drop({{"text/x-moz-url", {"", 0}}, {"UTF8_STRING", {"http://a/"}}}), false);
    EXPECT_EQ(Drop({{kColorType, {white, 16}}}), true) << "need not wait for it";
}

TEST_F(DropInTest, SurvivesAnyMessages) {
    std::minstd_rand random(20);
    const std::vector<const char*> types = {"XdndEnter",    "XdndPosition",  "XdndLeave",
                                            "XdndDrop",     "XdndStatus",    "XdndFinished",
                                            "WM_PROTOCOLS", "_NET_WM_STATE", "XdndSelection"};
    std::vector<uint32> words = {0, 1, partner.Window(), id, desk.Root(), 0xffffffff, 5u << 24};
    for (const char* type : {kColorType, "text/plain", "text/x-moz-url"})
        words.push_back(desk.Atom(type));
    window->AcceptLinks();
    partner.offered[kColorType] = {white, 16};
    partner.offered["text/x-moz-url"] = {"http://a/"};
    partner.Own("XdndSelection");
    for (int i = 0; i < 10'000; i++) {
        std::vector<uint32> data(5);
        for (uint32& word : data)
            word =
                random() % 4 == 0 ? static_cast<uint32>(random()) : words[random() % words.size()];
        partner.Send(id, random() % 8 == 0 ? partner.Window() : id, types[random() % types.size()],
                     data);
    }
    display.AwaitEvents();
    Peer later(desk);
    later.offered = partner.offered;
    EXPECT_EQ(later.Drop(id, 110, 130), true);
}

class NoFiles : public DragSink {
public:
    void SaveRequested(const std::string& path, std::function<void(status_t)> answer) override {
        paths.push_back(path);
        answer(B_OK);
    }
    std::vector<std::string> paths;
};

class DragOutTest : public DragTest {
protected:
    DragOutTest() {
        // Half of it can be looked through.
        for (std::size_t i = 0; i < picture.words.size(); i++)
            picture.words[i] = i % 40 < 20 ? 0x80800000 : 0;
        display.AwaitEvents();
    }

    // Presses in the window and begins to drag.
    status_t Begin() {
        window.events->Take();
        desk.MoveTo(120, 120);
        desk.Press();
        EXPECT_TRUE(window.events->Await<ButtonPressed>());
        return window->Drag(
            {.data = {{"text/uri-list", "http://a.example/\r\n"}, {"UTF8_STRING", "a text"}},
             .fileName = "../a/b",
             .image = picture,
             .hotX = 5,
             .hotY = 5},
            files);
    }
    void DragOver(Peer& target, int x = 500) {
        ASSERT_EQ(Begin(), B_OK);
        desk.MoveTo(x, 200);
        ASSERT_TRUE(target.AwaitOver());
    }
    bool ImageGoes() {
        return WaitUntil([&] { return desk.Shown("DND").empty(); });
    }

    std::shared_ptr<NoFiles> files = std::make_shared<NoFiles>();
    Pixels picture{40, 20, 0};
};

TEST_F(DragOutTest, GivesATargetNothingTooEarlyTooLateOrTwice) {
    DragOver(partner);
    EXPECT_EQ(window->Drag({}, files), B_BUSY);
    // The picture without what shows nothing, in its own colour.
    EXPECT_TRUE(WaitUntil([&] { return desk.Pixel(500, 200) == 0xff0000; }));
    EXPECT_EQ(desk.Pixel(520, 200), 0x8090a0u);
    EXPECT_EQ(partner.SaveName(), "-a-b");
    partner.SetSaveUri("file:///tmp/early");
    EXPECT_EQ(partner.Get("XdndDirectSave0"), std::nullopt);
    desk.Release();
    ASSERT_TRUE(partner.AwaitDrop());
    EXPECT_TRUE(window.events->Await<ButtonReleased>());
    EXPECT_TRUE(ImageGoes());
    EXPECT_EQ(partner.Get("image/png"), std::nullopt);
    partner.SetSaveUri("file:///tmp/a%20b\r\n");
    EXPECT_EQ(partner.Get("XdndDirectSave0"), "S");
    EXPECT_EQ(partner.Get("XdndDirectSave0"), std::nullopt);
    EXPECT_THAT(files->paths, ElementsAre("/tmp/a b"));
    EXPECT_EQ(partner.Get("UTF8_STRING"), "a text");
    partner.Finish();
    EXPECT_TRUE(WaitUntil([&] { return !partner.Get("UTF8_STRING"); }));
}

TEST_F(DragOutTest, EscapeEndsItAndTheReleaseStillComes) {
    DragOver(partner);
    desk.Key(XK_Escape);
    EXPECT_TRUE(partner.AwaitLeave());
    EXPECT_TRUE(ImageGoes());
    EXPECT_TRUE(window.events->All<ButtonReleased>().empty());
    desk.Release();
    EXPECT_TRUE(window.events->Await<ButtonReleased>());
    EXPECT_EQ(window->Drag({}, files), B_CANCELED); // nothing is held
}

TEST_F(DragOutTest, IsNotDroppedWhereItIsRefusedOrNobodyAnswers) {
    partner.accepts = false;
    DragOver(partner);
    desk.Release();
    EXPECT_TRUE(partner.AwaitLeave());
    auto silent = std::make_unique<Peer>(desk, Box{700, 100, 200, 200});
    silent->answers = false;
    DragOver(*silent, 800);
    desk.Release();
    EXPECT_TRUE(silent->AwaitLeave());
    DragOver(*silent, 800);
    silent.reset();
    desk.MoveTo(801, 200);
    desk.Release();
    EXPECT_TRUE(ImageGoes());
    // On its own window: as refused as on any other.
    ASSERT_EQ(Begin(), B_OK);
    desk.MoveTo(120, 130);
    desk.Release();
    EXPECT_TRUE(ImageGoes());
    EXPECT_TRUE(WaitUntil([&] {
        const status_t status = Begin();
        desk.Release();
        return status == B_OK;
    }));
}

TEST(FileUriTest, NamesFilesOfThisMachineOnly) {
    const std::pair<const char*, const char*> good[] = {{"file:///a/b%20c%25", "/a/b c%"},
                                                        {"FILE:/x", "/x"},
                                                        {"file://Here/y", "/y"},
                                                        {"file://localhost/z\n", "/z"}};
    std::string path;
    for (const auto& [uri, expected] : good) {
        EXPECT_EQ(PathOfFileUri(uri, "here", &path), B_OK) << uri;
        EXPECT_EQ(path, expected);
    }
    for (const char* foreign : {"file://there/x", "sftp://here/x", "file://here.there/x"})
        EXPECT_EQ(PathOfFileUri(foreign, "here", &path), B_UNSUPPORTED) << foreign;
    for (const char* bad :
         {"", "/x", "file:", "file://here", "file:x", "file:///", "file:///a/..", "file:///a/",
          "file:///%00", "file:///a%2fb", "file:///%", "file:///%g0", "file:///%2"})
        EXPECT_EQ(PathOfFileUri(bad, "here", &path), B_BAD_VALUE) << bad;
    EXPECT_EQ(path, "/z");
    EXPECT_EQ(FileNameFor(" ..\n"), "");
    const std::string longest(199, 'x');
    EXPECT_EQ(FileNameFor(longest + "\xc3\xbc"), longest);
}

} // namespace
} // namespace host

// Dragging between the program and others.

#include <random>

#include <gmock/gmock.h>

#include "base/Errors.h"
#include "host/x11/exchange/FileUri.h"
#include "tests/host/x11/EventLog.h"
#include "tests/support/Peer.h"
#include "tests/support/Robot.h"

namespace host {
namespace {

using test::Peer;
using test::WaitUntil;
using testing::ElementsAre;

constexpr char kColorType[] = "application/x-color";
constexpr uint32 kEscape = 0xff1b;

class DragTest : public testing::Test {
protected:
    // A white colour chooser's.
    const std::string white = std::string(8, '\xff');

    test::PrivateDesktop& desktop = test::PrivateDesktop::Shared();
    TestDisplay display{desktop};
    TestWindow window = display.CreateShown(BarSpec({100, 100, 140, 300}));
    const xcb_window_t id = display.IdOf(window);
    Peer partner{desktop, {400, 100, 200, 200}};
};

class DropInTest : public DragTest {};

TEST_F(DropInTest, AColorComesToItsPlace) {
    // It is read once, however far it is dragged.
    partner.offered = {{"UTF8_STRING", {"  #A0b0C0\n"}}};
    std::vector<std::string> types(2000, "text/html");
    types[900] = "UTF8_STRING";
    partner.Own("XdndSelection");
    partner.Enter(id, types);
    for (int y : {120, 140, 160}) {
        partner.Move(id, 120, y);
        EXPECT_EQ(partner.AwaitStatus(), true);
    }
    partner.LetGo(id);
    EXPECT_EQ(partner.AwaitFinish(), true);
    EXPECT_EQ(partner.requests, 1u);
    const auto dropped = window.events->Last<ColorDropped>();
    EXPECT_EQ(dropped.color, (rgb_color{0xa0, 0xb0, 0xc0, 255}));
    EXPECT_EQ(std::pair(dropped.x, dropped.y), std::pair(20, 60));
}

TEST_F(DropInTest, RefusesWhatIsNoColorAndWhatComesOutOfOrder) {
    const uint32 huge = 200u << 20;
    const Peer::Data refused[] = {
        {white.substr(2), 16},
        {white + "\xff\xff", 16},
        {std::string(3'000'000, '\xff'), 16},
        {std::string(reinterpret_cast<const char*>(&huge), 4), 32, "INCR"},
    };
    for (const Peer::Data& data : refused) {
        partner.offered[kColorType] = data;
        EXPECT_EQ(partner.Drop(id, 110, 130, {kColorType}), false) << data.bytes.size();
    }
    for (const char* text : {"", "#12345", "#1234567", "#12345g", "# 12345", "#+12345"}) {
        partner.offered["text/plain"] = {text};
        EXPECT_EQ(partner.Drop(id, 110, 130, {"text/plain"}), false) << text;
    }
    partner.LetGo(id); // has left
    EXPECT_EQ(partner.AwaitFinish(), false);
    partner.Move(id, 110, 130);
    EXPECT_EQ(partner.AwaitStatus(), false);
    partner.Enter(id, {kColorType});
    partner.LetGo(id); // at no place
    EXPECT_EQ(partner.AwaitFinish(), false);
    EXPECT_TRUE(window.events->All<ColorDropped>().empty());
}

TEST_F(DropInTest, OutlivesSourcesThatStopOrDie) {
    partner.offered[kColorType] = {"", 0};
    EXPECT_EQ(partner.Drop(id, 110, 130, {kColorType}), false);
    {
        Peer dying(desktop);
        dying.offered[kColorType] = {"", 0};
        dying.Own("XdndSelection");
        dying.Enter(id, {kColorType});
        dying.Move(id, 110, 130);
        dying.LetGo(id);
        display.AwaitEvents();
    }
    // The next one need not wait for it.
    partner.offered[kColorType] = {white, 16};
    EXPECT_EQ(partner.Drop(id, 110, 130, {kColorType}), true);
}

TEST_F(DropInTest, SurvivesAnyMessages) {
    std::minstd_rand random(20);
    const char* const types[] = {"XdndEnter",    "XdndPosition",  "XdndLeave",
                                 "XdndDrop",     "XdndStatus",    "XdndFinished",
                                 "WM_PROTOCOLS", "_NET_WM_STATE", "XdndSelection"};
    const uint32 words[] = {0,
                            1,
                            partner.Window(),
                            id,
                            desktop.Root(),
                            0xffffffff,
                            5u << 24,
                            desktop.Atom(kColorType),
                            desktop.Atom("text/plain")};
    partner.offered[kColorType] = {white, 16};
    partner.Own("XdndSelection");
    for (int i = 0; i < 10'000; i++) {
        std::vector<uint32> data(5);
        for (uint32& word : data)
            word = random() % 4 == 0 ? static_cast<uint32>(random()) : words[random() % 9];
        partner.Send(id, random() % 8 == 0 ? partner.Window() : id, types[random() % 9], data);
    }
    display.AwaitEvents();
    window.events->Forget();
    Peer later(desktop);
    later.offered = partner.offered;
    EXPECT_EQ(later.Drop(id, 110, 130, {kColorType}), true);
    EXPECT_TRUE(window.events->Await<ColorDropped>());
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
    DragOutTest() { display.AwaitEvents(); }

    // Presses in the window and begins to drag.
    status_t Begin() {
        window.events->Forget();
        robot.MoveTo(120, 120);
        robot.Press();
        if (!window.events->Await<ButtonPressed>())
            return B_ERROR;
        return window->Drag(
            {.data = {{"text/uri-list", "http://a.example/\r\n"}, {"UTF8_STRING", "a text"}},
             .fileName = "../a/b",
             .image = picture.Picture(),
             .hotX = 5,
             .hotY = 5},
            files);
    }
    size_t DragImages() { return display.OnScreen().Shown("DND").size(); }

    std::shared_ptr<NoFiles> files = std::make_shared<NoFiles>();
    // Half of it can be looked through.
    Pixels picture{40, 20, [](int x, int) { return x < 20 ? 0x80800000u : 0u; }};
    test::Robot robot{desktop};
};

TEST_F(DragOutTest, GivesTheTargetUnderThePointerWhatItAsksFor) {
    ASSERT_EQ(Begin(), B_OK);
    EXPECT_EQ(window->Drag({}, files), B_BUSY);
    robot.MoveTo(500, 200);
    ASSERT_TRUE(partner.AwaitOver());
    EXPECT_THAT(partner.OfferedTypes(),
                ElementsAre("XdndDirectSave0", "text/uri-list", "UTF8_STRING"));
    // The picture without what shows nothing, in its own colour.
    EXPECT_TRUE(WaitUntil([&] { return display.OnScreen().Pixel(500, 200) == 0xff0000; }));
    EXPECT_EQ(display.OnScreen().Pixel(520, 200), 0x8090a0u);
    EXPECT_EQ(partner.SaveName(), "-a-b");
    partner.SetSaveUri("file:///tmp/early");
    EXPECT_EQ(partner.Get("XdndDirectSave0"), std::nullopt);
    robot.Release();
    ASSERT_TRUE(partner.AwaitDrop());
    EXPECT_TRUE(window.events->Await<ButtonReleased>());
    EXPECT_EQ(DragImages(), 0u);
    EXPECT_EQ(partner.Get("UTF8_STRING"), "a text");
    EXPECT_EQ(partner.Get("image/png"), std::nullopt);
    partner.SetSaveUri("file:///tmp/a%20b\r\n");
    EXPECT_EQ(partner.Get("XdndDirectSave0"), "S");
    EXPECT_THAT(files->paths, ElementsAre("/tmp/a b"));
    EXPECT_EQ(partner.Get("XdndDirectSave0"), std::nullopt);
    partner.Finish();
    EXPECT_TRUE(WaitUntil([&] { return !partner.Get("UTF8_STRING"); }));
}

TEST_F(DragOutTest, EscapeEndsItAndTheReleaseStillComes) {
    ASSERT_EQ(Begin(), B_OK);
    robot.MoveTo(500, 200);
    ASSERT_TRUE(partner.AwaitOver());
    robot.Key(kEscape);
    EXPECT_TRUE(partner.AwaitLeave());
    EXPECT_TRUE(WaitUntil([&] { return DragImages() == 0; }));
    EXPECT_TRUE(window.events->All<ButtonReleased>().empty());
    robot.Release();
    EXPECT_TRUE(window.events->Await<ButtonReleased>());
    EXPECT_EQ(window->Drag({}, files), B_CANCELED); // nothing is held
}

TEST_F(DragOutTest, IsNotDroppedWhereItIsNotTaken) {
    partner.accepts = false;
    ASSERT_EQ(Begin(), B_OK);
    robot.MoveTo(500, 200);
    ASSERT_TRUE(partner.AwaitOver());
    robot.Release();
    EXPECT_TRUE(partner.AwaitLeave());
    // A target that says nothing, and one that dies.
    auto silent = std::make_unique<Peer>(desktop, test::Box{700, 100, 200, 200});
    silent->answers = false;
    ASSERT_EQ(Begin(), B_OK);
    robot.MoveTo(800, 200);
    ASSERT_TRUE(silent->AwaitOver());
    robot.Release();
    EXPECT_TRUE(silent->AwaitLeave());
    ASSERT_EQ(Begin(), B_OK);
    robot.MoveTo(800, 200);
    ASSERT_TRUE(silent->AwaitOver());
    silent.reset();
    robot.MoveTo(801, 200);
    robot.Release();
    EXPECT_TRUE(WaitUntil([&] { return DragImages() == 0; }));
    // On its own window: as refused as on any other.
    ASSERT_EQ(Begin(), B_OK);
    robot.MoveTo(120, 130);
    robot.Release();
    EXPECT_TRUE(WaitUntil([&] { return DragImages() == 0; }));
    EXPECT_TRUE(WaitUntil([&] {
        status_t status = Begin();
        robot.Release();
        return status == B_OK;
    }));
}

TEST(FileUriTest, NamesFilesOfThisMachineOnly) {
    std::string path;
    EXPECT_EQ(PathOfFileUri("file:///a/b%20c%25", "here", &path), B_OK);
    EXPECT_EQ(path, "/a/b c%");
    EXPECT_EQ(PathOfFileUri("FILE:/x", "here", &path), B_OK);
    EXPECT_EQ(PathOfFileUri("file://Here/y", "here", &path), B_OK);
    EXPECT_EQ(PathOfFileUri("file://localhost/z\n", "here", &path), B_OK);
    EXPECT_EQ(path, "/z");
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

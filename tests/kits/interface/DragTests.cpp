// Dragging into and out of views.

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <unistd.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/drawing/Bitmap.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "tests/kits/interface/InterfaceTest.h"
#include "tests/support/Peer.h"

using namespace test;
using testing::ElementsAre;

namespace {

// Its end is a new line in a form longer than UTF-8 allows.
constexpr char kName[] = "L\xc3\xadnk\xe0\x80\x8a";

// A link that is dragged as soon as it is pressed, and becomes a file.
class Link : public RecordingView {
public:
    explicit Link(BRect frame)
        : RecordingView(frame, "link") {
        mask = B_POINTER_EVENTS;
    }
    void MouseDown(BPoint where) override {
        RecordingView::MouseDown(where);
        BMessage message(B_MIME_DATA);
        message.AddInt32("be:actions", B_COPY_TARGET);
        message.AddString("be:clip_name", kName);
        message.AddString("be:url", "http://a.example/");
        message.AddData("text/plain", B_MIME_TYPE, "the text", 9);
        status = DragMessage(&message, new BBitmap(BRect(0, 0, 20, 10), B_RGBA32), B_OP_ALPHA,
                             BPoint(2, 2), this);
    }
    void MessageReceived(BMessage* message) override {
        entry_ref ref;
        if (message->what == B_COPY_TARGET && message->FindRef("directory", &ref) == B_OK) {
            const BDirectory directory(&ref);
            BFile(&directory, message->GetString("name", ""), B_WRITE_ONLY).Write("written", 7);
        } else {
            RecordingView::MessageReceived(message);
        }
    }

    status_t status = B_NO_INIT;
};

class DragTest : public InterfaceTest {
protected:
    void SetUp() override {
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        Show(window);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    // What is answered to a file manager that wants it there.
    std::optional<std::string> SaveAt(const std::string& uri) {
        const BPoint at = OnScreen(link, BPoint(10, 10));
        robot.MoveTo(static_cast<int>(at.x), static_cast<int>(at.y));
        robot.Press();
        robot.MoveTo(650, 250);
        EXPECT_TRUE(manager.AwaitOver());
        robot.Release();
        EXPECT_TRUE(manager.AwaitDrop());
        EXPECT_EQ(manager.SaveName(), kName);
        EXPECT_THAT(manager.OfferedTypes(),
                    ElementsAre("XdndDirectSave0", "text/x-moz-url", "UTF8_STRING",
                                "text/plain;charset=utf-8", "text/plain"));
        EXPECT_EQ(manager.Get("text/plain"), "the text");
        const std::u16string both = u"http://a.example/\nL\u00ednk";
        EXPECT_EQ(manager.Get("text/x-moz-url"),
                  std::string(reinterpret_cast<const char*>(both.data()), both.size() * 2));
        manager.SetSaveUri(uri);
        const auto answer = manager.Get("XdndDirectSave0");
        manager.Finish();
        return answer;
    }

    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 300, 200));
    Link* link = [this] {
        auto* view = new Link(BRect(20, 20, 100, 60));
        window->AddChild(view);
        return view;
    }();
    Peer manager{desktop, {600, 200, 200, 200}};
    std::string folder = "/tmp/drag-test-XXXXXX";
};

TEST_F(DragTest, ALinkBecomesAFileWhereItIsDropped) {
    EXPECT_EQ(SaveAt("file://" + folder + "/new"), "S");
    std::string content;
    std::ifstream(folder + "/new") >> content;
    EXPECT_EQ(content, "written");
    WithLock(window, [&] {
        EXPECT_EQ(link->CountOf("up"), 1);
        EXPECT_EQ(link->status, B_OK);
    });
    char machine[256] = {};
    gethostname(machine, sizeof(machine) - 1);
    EXPECT_EQ(SaveAt("file://" + std::string(machine) + folder + "/second"), "S");
    EXPECT_EQ(SaveAt("file://" + folder + "/none/new"), "F");
    EXPECT_EQ(SaveAt("file://other.example" + folder + "/third"), "F");
    EXPECT_EQ(SaveAt("smb://server/third"), "F");
    EXPECT_FALSE(std::filesystem::exists(folder + "/third"));
}

} // namespace

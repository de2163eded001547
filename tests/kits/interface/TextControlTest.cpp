#include "tests/kits/interface/TextControlTest.h"

#include "kits/app/Message.h"

TextControlTest::TextControlTest()
    : window(new RecordingWindow({300, 200, 599, 289}, B_TITLED_WINDOW_LOOK))
    , first(new BTextControl({10, 10, 289, 30}, "first", "Label", "", new BMessage(kFirstChanged)))
    , second(new BTextControl({10, 50, 289, 70}, "second", "Second", "", nullptr))
    , field(first->TextView()) {
    first->SetDivider(60);
    second->SetDivider(60);
    window->AddChild(first);
    window->AddChild(second);
    Show(window);
    WithLock(window, [&] {
        window->Activate();
        first->MakeFocus();
    });
    EXPECT_TRUE(WaitFor(window, [&] { return field->ShowsFocus(); }));
}

std::string TextControlTest::Text() {
    std::string text;
    WithLock(window, [&] { text = first->Text(); });
    return text;
}

std::pair<int32, int32> TextControlTest::Selection() {
    std::pair<int32, int32> range;
    WithLock(window, [&] { field->GetSelection(&range.first, &range.second); });
    return range;
}

void TextControlTest::SetText(const std::string& text, int32 caret) {
    WithLock(window, [&] {
        first->SetText(text.c_str());
        field->Select(caret, caret);
    });
}

void TextControlTest::Key(uint32_t key, std::initializer_list<uint32_t> held) {
    for (uint32_t one : held)
        robot.KeyDown(one);
    robot.Key(key);
    for (uint32_t one : held)
        robot.KeyUp(one);
}

bool TextControlTest::WaitForText(const std::string& text) {
    bool came = test::WaitUntil([&] { return Text() == text; });
    EXPECT_EQ(Text(), text);
    return came;
}

bool TextControlTest::WaitForSelection(int32 start, int32 end) {
    std::pair range(start, end);
    bool came = test::WaitUntil([&] { return Selection() == range; });
    EXPECT_EQ(Selection(), range);
    return came;
}

float TextControlTest::PlaceOf(int32 offset) {
    float width = 0;
    WithLock(window, [&] {
        width = field->StringWidth(std::string(first->Text(), static_cast<size_t>(offset)).c_str());
    });
    return kMargin + width;
}

float TextControlTest::PlaceBefore(const std::string& part) {
    float width = 0;
    WithLock(window, [&] { width = field->StringWidth(part.c_str()); });
    return width;
}

void TextControlTest::Press(BView* view, BPoint where, int clicks) {
    MoveOver(view, where);
    robot.Press();
    for (int i = 1; i < clicks; i++) {
        robot.Release();
        robot.PressAgain();
    }
}

void TextControlTest::WaitForOffered(const std::string& selection, const std::string& text) {
    test::Peer other(desktop);
    std::optional<std::string> offered;
    EXPECT_TRUE(test::WaitUntil([&] {
        return (offered = other.Ask(selection, "UTF8_STRING")) == text;
    })) << offered.value_or("nothing");
}

void TextControlTest::Bring(const std::string& selection, const std::string& text,
                            const std::function<void()>& work) {
    test::Peer other(desktop);
    other.Own(selection);
    work();
    const auto request = other.AwaitRequest();
    ASSERT_TRUE(request);
    other.Answer(*request, {text});
}

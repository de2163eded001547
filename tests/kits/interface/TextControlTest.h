#pragma once

#include <unistd.h>

#include <memory>

#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "tests/kits/interface/InterfaceTest.h"
#include "tests/support/ChildProcess.h"

// A window with two text controls, the first of which has the focus.
class TextControlTest : public InterfaceTest {
protected:
    static constexpr uint32 kFirstChanged = 'tst1';

    TextControlTest();
    ~TextControlTest() override { unlink(fFile.c_str()); }

    std::string Text();
    // Start and end of what is selected in the first control.
    std::pair<int32, int32> Selection();
    void SetText(const std::string& text, int32 caret = 0);
    // Presses a key while others are held.
    void Key(uint32_t key, std::initializer_list<uint32_t> held = {});
    bool WaitForText(const std::string& text);
    bool WaitForSelection(int32 start, int32 end);
    // Where the caret would be before that byte of a text that is not scrolled, in the field's
    // coordinates.
    float PlaceOf(int32 offset);
    // How far from its end a part of the text begins.
    float PlaceBefore(const std::string& part);
    // Presses `clicks` times and holds the last.
    void Press(BView* view, BPoint where, int clicks);
    // Until another program gets this text when it asks for the selection.
    void WaitForHanded(const std::string& selection, const std::string& text);
    // Another program offers a text.
    void Hand(const std::string& selection, const std::string& text);

    static constexpr float kMargin = 2;

    RecordingWindow* window;
    BTextControl* first;
    BTextControl* second;
    TextField* field;

private:
    std::string Handed(const std::string& selection);

    std::vector<std::unique_ptr<test::ChildProcess>> fPrograms;
    // What goes to and fro.
    const std::string fFile = testing::TempDir() + "selection." + std::to_string(getpid());
};

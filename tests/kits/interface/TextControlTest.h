#pragma once

#include "kits/interface/TextControl.h"
#include "kits/interface/TextField.h"
#include "tests/kits/interface/InterfaceTest.h"

// A window with two text controls, the first of which has the focus.
class TextControlTest : public InterfaceTest {
protected:
    static constexpr uint32 kFirstChanged = 'tst1';

    TextControlTest();

    std::string Text();
    // Start and end of what is selected in the first control.
    std::pair<int32, int32> Selection();
    void SetText(const std::string& text, int32 caret = 0);
    // Presses a key while others are held.
    void Key(uint32_t key, std::initializer_list<uint32_t> held = {});
    bool WaitForText(const std::string& text);
    bool WaitForSelection(int32 start, int32 end);
    // Where the caret would be before that byte, in the field's coordinates.
    float PlaceOf(int32 offset);

    RecordingWindow* window;
    BTextControl* first;
    BTextControl* second;
    TextField* field;
};

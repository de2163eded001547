#pragma once

#include <functional>

#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "tests/kits/interface/InterfaceTest.h"
#include "tests/support/Peer.h"

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
    // Where the caret would be before that byte of a text that is not scrolled, in the field's
    // coordinates.
    float PlaceOf(int32 offset);
    // How far from its end a part of the text begins.
    float PlaceBefore(const std::string& part);
    // Presses `clicks` times and holds the last.
    void Press(BView* view, BPoint where, int clicks);
    // Until another program gets this text when it asks for the selection.
    void WaitForOffered(const std::string& selection, const std::string& text);
    // Another program owns a text that `work` asks for.
    void Bring(const std::string& selection, const std::string& text,
               const std::function<void()>& work);

    static constexpr float kMargin = 2;

    RecordingWindow* window;
    BTextControl* first;
    BTextControl* second;
    TextField* field;
};

#pragma once

#include <memory>
#include <string>
#include <utility>

#include "host/x11/Display.h"
#include "kits/app/MessageRunner.h"
#include "kits/interface/text/CaretBlink.h"
#include "kits/interface/text/EditKeys.h"
#include "kits/interface/text/TextLine.h"
#include "kits/interface/text/TextView.h"
#include "kits/interface/text/UndoHistory.h"

class BTextControl;

// The field of a BTextControl: one line of text in one font and colour that scrolls sideways.
// Offsets count bytes and stand between two characters as a person sees them.
class TextField : public BTextView {
public:
    explicit TextField(BTextControl& control);

    void SetText(const char* text) override;
    const char* Text() const override { return fLine.Text().c_str(); }
    int32 TextLength() const override { return fLine.Length(); }
    // The range does not matter.
    void SetFontAndColor(int32 start, int32 end, const BFont* font, uint32 mode = B_FONT_ALL,
                         const rgb_color* color = nullptr) override;
    void SetFont(const BFont* font, uint32 mask = B_FONT_ALL) override;

    // The caret is at `end`, which may be before `start`.
    void Select(int32 start, int32 end);
    void SelectAll();
    void GetSelection(int32* start, int32* end) const;
    // In the place of what is selected, as if the user had done it: new lines become blanks, other
    // control characters are left out.
    void Insert(const char* text);
    void Undo();
    void Redo();
    // With the desktop's clipboard. Its text comes later, as a message.
    void Cut();
    void Copy();
    void Paste();

    void SetEnabled(bool enabled);
    // The window is active and the keys go here.
    bool ShowsFocus() const;
    // Where the text stands, from the field's top edge.
    float Baseline() const;

    void Draw(BRect updateRect) override;
    void MakeFocus(bool focus = true) override;
    void WindowActivated(bool active) override;
    void KeyDown(const char* bytes, int32 numBytes) override;
    void MouseDown(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;
    void MouseUp(BPoint where) override;
    void FrameResized(float width, float height) override;
    void MessageReceived(BMessage* message) override;
    void DetachedFromWindow() override;

private:
    enum class Drag { None, Characters, Words, All };
    // A message to itself: the field "text", if there was any.
    static constexpr uint32 kTextCame = '_ktc';
    // Another: an item of its menu was chosen, "action" int32.
    static constexpr uint32 kActionChosen = '_kta';

    // Drawing and the place of the text (TextField.cpp).
    TextLine::Range Selection() const;
    float TextRoom() const;
    void DrawSelection(float left, float right);
    void DrawCaret();
    BRect CaretFrame() const;
    void ShowCaret();
    void UpdateCaret();
    float LinePlaceOf(BPoint where) const;

    // Changes (TextField.cpp).
    void SetCaret(int32 caret, bool extends);
    void Change(TextLine::Range range, std::string_view text, UndoHistory::Kind kind);

    // Input (TextFieldInput.cpp).
    bool HandleKey(EditKey key, std::string_view typed);
    bool Move(EditKey key);
    bool Erase(EditAction action);
    void BeginDrag(BPoint where, int32 clicks, bool extends);
    void DragTo(BPoint where);
    void EndDrag();

    // The menu of the secondary button (TextFieldMenu.cpp).
    void OpenMenu(BPoint where);
    bool Offers(EditAction action) const;

    // The desktop's selections (TextFieldClipboard.cpp).
    std::string SelectedText() const;
    void OfferSelected();
    void AskFor(host::SelectionKind selection);
    void TakeText(const BMessage& message);

    BTextControl& fControl;
    TextLine fLine;
    UndoHistory fHistory;
    int32 fAnchor = 0; // the end of the selection that stays
    int32 fCaret = 0;
    float fScroll = 0; // of the text to the left
    bool fIsEnabled = true;
    Drag fDrag = Drag::None;
    TextLine::Range fDragStart; // the word that a drag began with
    BPoint fDragPlace;
    std::unique_ptr<BMessageRunner> fScroller; // while the pointer is dragged beyond the field
    CaretBlink fBlink{*this};
};

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/x11/Display.h"
#include "kits/app/MessageRunner.h"
#include "kits/interface/text/EditKeys.h"
#include "kits/interface/text/TextLine.h"
#include "kits/interface/text/UndoHistory.h"
#include "kits/interface/window/View.h"

class BTextControl;

// The field of a BTextControl: one line of text in one font and colour that scrolls sideways.
// Offsets count bytes and stand between two characters as a person sees them. The text that the
// user types or brings in is kept to one line and, with the rest, to 4 KiB; a text that is set may
// be of any length. Window's thread.
class TextField : public BView {
public:
    explicit TextField(BTextControl& control);

    void SetText(const char* text);
    const char* Text() const { return fLine.Text().c_str(); }
    int32 TextLength() const { return fLine.Length(); }
    void SetFont(const BFont* font, uint32 mask = B_FONT_ALL) override;

    // The caret is at `end`, which may be before `start`.
    void Select(int32 start, int32 end);
    void SelectAll();
    void GetSelection(int32* start, int32* end) const;
    // In the place of the selection, as if the user had typed it.
    void Insert(std::string_view text, UndoHistory::Kind kind = UndoHistory::Kind::Other);
    void Undo();
    void Redo();
    // With the desktop's clipboard. A pasted text comes later, as a message.
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
    static constexpr uint32 kBlinkTick = '_kcb'; // a message to itself, "round" int32

    // Drawing and the place of the text (TextField.cpp).
    TextLine::Range Selection() const;
    float TextRoom() const;
    BRect CaretFrame() const;
    void ShowCaret();
    void UpdateCaret();
    void Blink(const BMessage& tick);
    float LinePlaceOf(BPoint where) const;

    // Changes (TextField.cpp).
    void SetCaret(int32 caret, bool extends);
    void Change(TextLine::Range range, std::string_view text, UndoHistory::Kind kind);

    // Input (TextFieldInput.cpp).
    bool HandleKey(EditKey key, std::string_view typed);
    // Where a move puts the caret, and what erasing takes away without a selection.
    std::optional<int32> TargetOf(EditKey key) const;
    std::optional<TextLine::Range> ErasedBy(EditAction action) const;
    void BeginDrag(BPoint where, int32 clicks, bool extends);
    void DragTo(BPoint where);
    void EndDrag();

    void OpenMenu(BPoint where);
    bool Offers(EditAction action) const;
    std::string SelectedText() const;
    void OfferSelected();
    void AskFor(host::SelectionKind selection);

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
    std::unique_ptr<BMessageRunner> fBlinker;  // null while the caret stays as it is
    int32 fBlinkRound = 0;                     // ticks of earlier rounds may still be in the queue
    bool fShowsCaret = true;
};

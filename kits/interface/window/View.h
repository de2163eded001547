#pragma once

#include <vector>

#include "base/Color.h"
#include "base/Rect.h"
#include "kits/app/Handler.h"
#include "kits/interface/drawing/Cursor.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/drawing/GraphicsDefs.h"
#include "kits/interface/drawing/InterfaceDefs.h"

class BBitmap;
class BWindow;
class ClipRegion;
namespace host {
class Canvas;
}

// How a view follows when its parent is resized: for each direction one of
enum : uint32 {
    B_FOLLOW_NONE = 0,
    B_FOLLOW_RIGHT = 0x0202,
    B_FOLLOW_LEFT = 0x0204,
    B_FOLLOW_LEFT_RIGHT = 0x0206,
    B_FOLLOW_H_CENTER = 0x0208,
    B_FOLLOW_TOP = 0x1010,
    B_FOLLOW_BOTTOM = 0x3010,
    B_FOLLOW_TOP_BOTTOM = 0x5010,
    B_FOLLOW_V_CENTER = 0x7010,
    B_FOLLOW_ALL_SIDES = B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP_BOTTOM,
    B_FOLLOW_ALL = B_FOLLOW_ALL_SIDES,
};

// View flags.
enum : uint32 {
    B_WILL_DRAW = 0x20000000,             // Draw() is called
    B_NAVIGABLE = 0x02000000,             // Tab gives it the focus
    B_FULL_UPDATE_ON_RESIZE = 0x80000000, // all of it is drawn again, not only what is new
    B_FRAME_EVENTS = 0x04000000,          // FrameResized() is called
    B_NAVIGABLE_JUMP = 0x08000000,        // Control-Tab goes from this group of views to the next
};

// Where the pointer is, as `transit` of MouseMoved().
enum : uint32 {
    B_ENTERED_VIEW,
    B_INSIDE_VIEW,
    B_EXITED_VIEW,
    B_OUTSIDE_VIEW,
};

enum : uint32 {
    B_POINTER_EVENTS = 0x00000001,
    B_KEYBOARD_EVENTS = 0x00000002,
};

enum : uint32 {
    B_LOCK_WINDOW_FOCUS = 0x00000001,
    B_NO_POINTER_HISTORY = 0x00000004,
};

// A rectangle of a window that draws itself and takes input. Views form a tree; a child is drawn
// over its parent, inside it, and a parent's own drawing never covers its children.
//
// Coordinates are logical pixels from the view's left-top corner. A view belongs to its parent or
// window once it has been added, and is deleted with it. One that is in no window keeps its state,
// and drawing it does nothing. Views in a window are used with the window locked: the hooks (the
// virtual functions) are called by the window's thread, which holds the lock, or, before the window
// is shown for the first time, by the thread that builds it.
class BView : public BHandler {
public:
    // `frame` is in the parent's coordinates; its corner and size are rounded to whole pixels.
    BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);

    // Removes it from its parent and deletes its children.
    ~BView() override;

    // Hooks. Those without a comment on it do nothing here.
    virtual void AttachedToWindow() {}   // parents first
    virtual void DetachedFromWindow() {} // parents first; the window is still there
    // `updateRect` covers what must be drawn; drawing is clipped to it and to the view. What lies
    // there has been filled with the view colour.
    virtual void Draw(BRect /*updateRect*/) {}
    // "buttons", "clicks" and more are in Window()->CurrentMessage().
    virtual void MouseDown(BPoint /*where*/) {}
    // The view that was pressed, and no other, gets the end of the press: when the last button is
    // released, wherever the pointer is, and also, with a place outside the view, when a menu or a
    // drag takes the pointer or the window leaves the screen. Also called for each earlier release
    // of several buttons.
    virtual void MouseUp(BPoint /*where*/) {}
    // `dragged` is null unless a link is dragged over the view (see BWindow::AcceptLinks()).
    virtual void MouseMoved(BPoint /*where*/, uint32 /*transit*/, const BMessage* /*dragged*/) {}
    // For the focus view. `bytes` is what the key types. Tab moves the focus to the next view that
    // is B_NAVIGABLE, Enter presses the default button; every other key is handed to the window's
    // MessageReceived(). The shortcuts of the window's menus never come here.
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void KeyUp(const char* bytes, int32 numBytes);
    void MessageReceived(BMessage* message) override;
    virtual void WindowActivated(bool /*active*/) {}
    virtual void FrameResized(float /*width*/, float /*height*/) {}

    // Puts `child` before the sibling `before`, or last. It must have no parent yet. The view owns
    // it from now on.
    void AddChild(BView* child, BView* before = nullptr);
    // The caller owns `child` again. False if `child` has another parent.
    bool RemoveChild(BView* child);
    bool RemoveSelf() { return fParent != nullptr && fParent->RemoveChild(this); }
    int32 CountChildren() const { return static_cast<int32>(fChildren.size()); }
    BView* ChildAt(int32 index) const; // null past the last

    // Null in no window. Parent() is also null for a view that was added to the window itself.
    BWindow* Window() const { return fWindow; }
    BView* Parent() const;

    BRect Frame() const { return fFrame; }
    BRect Bounds() const { return {0, 0, fFrame.Width(), fFrame.Height()}; }
    void MoveTo(BPoint where) { MoveTo(where.x, where.y); }
    void MoveTo(float x, float y);
    // `width` is right minus left. Children follow by their resizing modes.
    void ResizeTo(float width, float height);

    BPoint ConvertFromParent(BPoint point) const { return point - fFrame.LeftTop(); }
    BRect ConvertToParent(BRect rect) const { return rect.OffsetByCopy(fFrame.LeftTop()); }
    // By way of the window's frame; for a view in no window by way of its topmost parent.
    BPoint ConvertToScreen(BPoint point) const;
    BPoint ConvertFromScreen(BPoint point) const;
    BRect ConvertToScreen(BRect rect) const;

    // The visible part of the view itself: its parents cut it off, its children cover it.
    void GetClippingRegion(ClipRegion* region) const;

    uint32 Flags() const { return fFlags; }

    // Calls are counted: as many Show() as Hide() make it visible again.
    virtual void Hide();
    virtual void Show();
    // Also true when a view above it is hidden.
    bool IsHidden() const;

    // Takes the keyboard focus of the window, or gives it up.
    virtual void MakeFocus(bool focus = true);
    bool IsFocus() const;

    // The colour that Draw() starts from; 255, 255, 255 unless set. Nothing is drawn by it.
    virtual void SetViewColor(rgb_color color) { fViewColor = color; }
    void SetViewColor(uint8 red, uint8 green, uint8 blue, uint8 alpha = 255) {
        SetViewColor(rgb_color{red, green, blue, alpha});
    }
    rgb_color ViewColor() const { return fViewColor; }
    // The colour of lines, fills and texts; black unless set.
    virtual void SetHighColor(rgb_color color) { fHighColor = color; }
    void SetHighColor(uint8 red, uint8 green, uint8 blue, uint8 alpha = 255) {
        SetHighColor(rgb_color{red, green, blue, alpha});
    }
    rgb_color HighColor() const { return fHighColor; }
    // Accepted: nothing is drawn with it.
    void SetLowColor(rgb_color) {}

    // The system's default unless set; kept while a button that was pressed in the view is held.
    void SetViewCursor(const BCursor& cursor);

    // How drawing meets what is there; B_OP_COPY unless set.
    virtual void SetDrawingMode(drawing_mode mode) { fDrawingMode = mode; }
    // Where B_OP_ALPHA takes the alpha of a bitmap from; B_PIXEL_ALPHA unless set. All else is
    // drawn with that of the high colour. What is drawn into a bitmap adds to its alpha, as
    // B_ALPHA_COMPOSITE says; elsewhere the functions do the same.
    void SetBlendingMode(source_alpha source, alpha_function) { fSourceAlpha = source; }

    virtual void SetFont(const BFont* font, uint32 mask = B_FONT_ALL);
    void GetFont(BFont* font) const { *font = fFont; }
    void GetFontHeight(font_height* height) const { fFont.GetHeight(height); }
    float StringWidth(const char* string) const { return fFont.StringWidth(string); }

    // Drawing is in the high colour, clipped to the view. Outside Draw() it is seen at the end of
    // the message that is being handled, or when Flush(), Sync() or GetMouse() is called before
    // that.
    void MovePenTo(float x, float y) { fPen = BPoint(x, y); }
    // From `from`, or the pen, to `to`, both ends drawn. The pen is at `to` afterwards.
    void StrokeLine(BPoint from, BPoint to);
    void StrokeLine(BPoint to) { StrokeLine(fPen, to); }
    void StrokeRect(BRect rect);
    void FillRect(BRect rect);
    void FillPolygon(const BPoint* points, int32 count);
    void FillEllipse(BRect frame);
    // With its left-top corner at `where`.
    void DrawBitmap(const BBitmap* bitmap, BPoint where);
    // One line that starts at `baseline`, or at the pen; the pen is behind it afterwards.
    void DrawString(const char* string) { DrawString(string, fPen); }
    void DrawString(const char* string, BPoint baseline);

    // Has all of it, or the part in `rect`, drawn at the end of the message.
    void Invalidate() { Invalidate(Bounds()); }
    void Invalidate(BRect rect);

    // Shows what has been drawn; Sync() returns when the display server has it.
    void Flush() const;
    void Sync() const;

    // Where the pointer is, in the view, and which buttons are down. With `checkMessageQueue` the
    // window's next waiting mouse message is taken out of the queue and answered instead, so a
    // caller that loops sees every release, and MouseUp() is not called for one it has seen.
    void GetMouse(BPoint* where, uint32* buttons, bool checkMessageQueue = true);

    // With B_KEYBOARD_EVENTS in `mask` the view gets every key of the session from now on, or as
    // soon as it is in a window that has been shown: KeyDown(), KeyUp() or MessageReceived() is
    // called, once, whichever window or program the key is for. The messages are those of the focus
    // view but have no "bytes", and the hooks get none: what is typed elsewhere stays unknown. What
    // the view passes on ends with it. While an alert is open nothing comes. Other bits have no
    // effect; `options` are accepted. Always B_OK.
    status_t SetEventMask(uint32 mask, uint32 options = 0);

    // Called in MouseDown(): until the press ends, this view also gets the moves that are not over
    // it. `options` are accepted; the history of the pointer is never sent. B_ERROR for a view that
    // is not pressed.
    status_t SetMouseEventMask(uint32 mask, uint32 options = 0);

    // Has the user drag `message` from here on, until the buttons are up, and drop it on any
    // program. Called while a button is held that was pressed in the window. Other programs get
    // "be:url" and "text/plain". Where "be:actions" offers B_COPY_TARGET a file manager can have an
    // empty file named "be:clip_name" made: `replyTo` (null: this view) then gets B_COPY_TARGET
    // with the entry_ref "directory" and the string "name", and writes the file before it returns.
    // Escape ends the drag.
    //
    // `image` follows the pointer, which is at `offset` of it; it is deleted by this call. Its
    // pixels' alpha counts, whatever `mode` is. B_BUSY during another drag, B_CANCELED if no
    // button is held any more, B_NO_INIT in no window, B_BAD_VALUE without a message.
    status_t DragMessage(const BMessage* message, BBitmap* image, drawing_mode mode, BPoint offset,
                         BHandler* replyTo = nullptr);

protected:
    // Whether Tab may give it the focus.
    virtual bool CanTakeFocus() const { return (fFlags & B_NAVIGABLE) != 0; }
    // A press of a key in the window comes to all its views before the focus gets it, until one
    // answers true: the key was a shortcut of that view.
    virtual bool HandleShortcut(const BMessage& /*keyDown*/) { return false; }

private:
    friend class BBitmap;
    friend class BTextView;
    friend class BWindow;

    void Attach(BWindow* window);
    void Detach();
    void DetachAll();
    void SetFrame(BRect frame);
    void ParentResized(float deltaWidth, float deltaHeight);
    void ActivateAll(bool active);
    BView* DeepestAt(BPoint where);
    BPoint OriginInWindow() const;
    BRect VisibleRect() const;
    bool IsWatching() const;
    host::Canvas* Canvas();
    BBitmap* Bitmap() const;

    BView* fParent = nullptr;
    BWindow* fWindow = nullptr;
    BBitmap* fBitmap = nullptr; // whose root this view is
    std::vector<BView*> fChildren;
    BRect fFrame;
    uint32 fResizingMode;
    uint32 fFlags;
    uint32 fEventMask = 0;
    int32 fHideCount = 0;
    rgb_color fViewColor{255, 255, 255, 255};
    rgb_color fHighColor{0, 0, 0, 255};
    drawing_mode fDrawingMode = B_OP_COPY;
    source_alpha fSourceAlpha = B_PIXEL_ALPHA;
    BCursor fCursor;
    BFont fFont;
    BPoint fPen;
};

#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "kits/interface/controls/StringView.h"
#include "kits/interface/drawing/Cursor.h"
#include "kits/interface/window/MimeType.h"
#include "kits/support/String.h"

class BBitmap;
class BMessage;
class BPopUpMenu;

// A line of text that is a link: to a web page ("http://", "file://"), to a server ("ftp://") or to
// a person ("mailto:", or any address with "@"). A click opens it in the desktop's program for
// that, the secondary button offers a menu, and it can be dragged out to become a bookmark file or
// a person file.
//
// The setters that redraw lock the window and may be called from any thread; the rest is for the
// window's thread.
class URLView : public BStringView {
public:
    // `label` is what is shown, `url` the link.
    URLView(BRect frame, const char* name, const char* label, const char* url, uint32 resizingMode,
            uint32 flags);
    ~URLView() override;

    void MessageReceived(BMessage* message) override;
    void AttachedToWindow() override;
    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void MouseUp(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;
    void WindowActivated(bool active) override;

    // Adds an attribute to the files that are made of the link.
    virtual void AddAttribute(const char* name, const char* value);
    virtual bool IsEnabled() const { return fEnabled; }
    // The colours of the link: at rest, pressed, disabled, under the pointer.
    virtual void SetColor(rgb_color color);
    virtual void SetColor(uint8 red, uint8 green, uint8 blue, uint8 alpha) {
        SetColor(rgb_color{red, green, blue, alpha});
    }
    virtual void SetClickColor(rgb_color color) { fClickColor = color; }
    virtual void SetClickColor(uint8 red, uint8 green, uint8 blue, uint8 alpha) {
        SetClickColor(rgb_color{red, green, blue, alpha});
    }
    virtual void SetDisabledColor(rgb_color color);
    virtual void SetDisabledColor(uint8 red, uint8 green, uint8 blue, uint8 alpha) {
        SetDisabledColor(rgb_color{red, green, blue, alpha});
    }
    virtual void SetDraggable(bool draggable) { fDraggable = draggable; }
    // A disabled link is plain text.
    virtual void SetEnabled(bool enabled);
    virtual void SetHoverColor(rgb_color color) { fHoverColor = color; }
    virtual void SetHoverColor(uint8 red, uint8 green, uint8 blue, uint8 alpha) {
        SetHoverColor(rgb_color{red, green, blue, alpha});
    }
    virtual void SetHoverEnabled(bool enabled) { fHoverEnabled = enabled; }
    // Of the icon that is dragged.
    virtual void SetIconSize(icon_size size);
    virtual void SetUnderlineThickness(int32 thickness) { fUnderlineThickness = thickness; }
    // An address gets "mailto:" in front. A link of no known kind disables the view.
    virtual void SetURL(const char* url);

protected:
    std::unique_ptr<BPopUpMenu> CreatePopupMenu() const;

private:
    void Redraw();
    void ShowColor(rgb_color color);
    void ShowAndUnlock();
    float TextOffset() const;
    BRect GetTextRect() const;
    BRect GetURLRect() const;
    uint32 PressedButtons() const;

    bool IsHTMLLink() const;
    bool IsFTPLink() const;
    bool IsEmailLink() const;
    // Without the "mailto:" of an address.
    BString GetImportantURL() const;

    // The pointer (URLViewMouse.cpp).
    void Hover(uint32 buttons);
    void MovedOverText(BPoint where, uint32 buttons);
    void MovedBesideText();
    void MovedOut(uint32 buttons);
    void StopHovering();
    void ChooseFromMenu(BPoint where);

    // The actions of a click and the menu (URLViewActions.cpp).
    void CopyToClipboard() const;
    void LaunchURL() const;

    // Dragging out (URLViewDrag.cpp).
    void StartDrag();
    std::unique_ptr<BBitmap> DrawDragImage(BRect room, const char* type, const BString& text,
                                           bool underlined) const;

    BString fURL;
    rgb_color fColor{0, 0, 255, 0};
    rgb_color fClickColor{255, 0, 0, 0};
    rgb_color fHoverColor{0, 0, 120, 0};
    rgb_color fDisabledColor{100, 100, 100, 0};
    bool fEnabled = true;
    bool fHoverEnabled = true;
    bool fDraggable = true;
    int32 fUnderlineThickness = 1;
    icon_size fIconSize = B_MINI_ICON;

    // Of the press that is under way, and of the pointer.
    bool fPressed = false;
    bool fHovering = false;
    bool fDragStarted = false;
    bool fPopupPending = false; // the press was the secondary button's
    BPoint fDragPoint;

    const BCursor fLinkCursor;
    std::vector<std::pair<BString, BString>> fAttributes;
};

#pragma once

#include "kits/interface/controls/Box.h"

class BButton;
class BMenuField;
class BPopUpMenu;
class BStringView;
class BTextControl;

// The box with the texts of a bookmark.
class QBEditInfoView : public BBox {
public:
    using BBox::BBox;

    // Makes the controls, which belong to the box; once.
    void InitView();

    BTextControl* fNameText = nullptr;
    BTextControl* fUrlText = nullptr;
    BTextControl* fKeywordsText = nullptr;

private:
    BTextControl* AddText(BRect frame, const char* name, const char* label);
};

// The box with a button for each folder, which shows the folder's menu. Takes no messages itself.
class QBBrowseView : public BBox {
public:
    using BBox::BBox;

    void MessageReceived(BMessage* message) override;

    // Makes the buttons, which belong to the box; once.
    void InitView();

    BButton* fButtons[10] = {}; // by digit
};

// The box with the menus of folders and slots, and the folder's name. Takes no messages itself.
class QBLocationView : public BBox {
public:
    using BBox::BBox;

    void MessageReceived(BMessage* message) override;

    // Makes the controls, which belong to the box; once.
    void InitView();

    BMenuField* fFolderField = nullptr;
    BMenuField* fSlotField = nullptr;
    BTextControl* fKeyword = nullptr;
    BStringView* fNote = nullptr; // about a link that was dropped; mostly empty

private:
    BMenuField* AddField(BRect frame, const char* name, const char* label, BPopUpMenu* menu);
};

// The panel of the Add Bookmark window: three boxes and a row of buttons. What its controls send
// goes to the window, as does what is sent to the panel.
class QBAddBookmarkView : public BView {
public:
    using BView::BView;

    void MessageReceived(BMessage* message) override;

    // Makes the controls, which belong to the panel; once, before it is added to the window.
    void InitView();

    BButton* fShowInTracker = nullptr;
    BButton* fCancel = nullptr;
    BButton* fAdd = nullptr;
    QBLocationView* fLocation = nullptr;
    QBBrowseView* fBrowse = nullptr;
    QBEditInfoView* fEditInfo = nullptr;

private:
    BButton* AddButton(BRect frame, const char* name, const char* label, uint32 command);
    void FitLabels();
};

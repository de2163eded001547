#pragma once

#include "kits/interface/window/View.h"

class BButton;
class QBBrowseView;
class QBEditInfoView;
class QBLocationView;

// The panel of the Add Bookmark window: three boxes and a row of buttons. What its controls send
// goes to the window, as does what is sent to the panel.
class QBAddBookmarkView : public BView {
public:
    QBAddBookmarkView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
    ~QBAddBookmarkView() override;

    void MessageReceived(BMessage* message) override;

    // Makes the controls, which belong to the panel; once, before it is added to the window.
    void InitView();

    BButton* fShowInTracker;
    BButton* fCancel;
    BButton* fAdd;
    QBLocationView* fLocation;
    QBBrowseView* fBrowse;
    QBEditInfoView* fEditInfo;

private:
    BButton* AddButton(BRect frame, const char* name, const char* label, uint32 command);
    void FitLabels();
};

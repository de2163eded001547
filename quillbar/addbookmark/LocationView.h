#pragma once

#include "kits/interface/controls/Box.h"

class BMenuField;
class BPopUpMenu;
class BTextControl;

// The box with the menus of folders and slots, and the folder's name. Takes no messages itself.
class QBLocationView : public BBox {
public:
    QBLocationView(BRect frame, const char* name, uint32 resizingMode, uint32 flags,
                   border_style border);
    ~QBLocationView() override;

    void MessageReceived(BMessage* message) override;

    // Makes the controls, which belong to the box; once.
    void InitView();

    BMenuField* fFolderField;
    BMenuField* fSlotField;
    BTextControl* fKeyword;

private:
    BMenuField* AddField(BRect frame, const char* name, const char* label, BPopUpMenu* menu);
};

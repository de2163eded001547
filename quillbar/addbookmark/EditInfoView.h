#pragma once

#include "kits/interface/controls/Box.h"

class BTextControl;

// The box with the texts of a bookmark.
class QBEditInfoView : public BBox {
public:
    QBEditInfoView(BRect frame, const char* name, uint32 resizingMode, uint32 flags,
                   border_style border);
    ~QBEditInfoView() override;

    // Makes the controls, which belong to the box; once.
    void InitView();

    BTextControl* fNameText;
    BTextControl* fUrlText;
    BTextControl* fKeywordsText;

private:
    BTextControl* AddText(BRect frame, const char* name, const char* label);
};

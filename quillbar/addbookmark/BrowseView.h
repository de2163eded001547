#pragma once

#include "kits/interface/controls/Box.h"

class BButton;

// The box with a button for each folder, which shows the folder's menu. Takes no messages itself.
class QBBrowseView : public BBox {
public:
    QBBrowseView(BRect frame, const char* name, uint32 resizingMode, uint32 flags,
                 border_style border);
    ~QBBrowseView() override;

    void MessageReceived(BMessage* message) override;

    // Makes the buttons, which belong to the box; once.
    void InitView();

    BButton* fButtons[10]; // by digit
};

#pragma once

#include "kits/interface/window/View.h"

class BBox;
class BStringView;
class URLView;

// The content of the about box: the product, credits and a link.
class QBAboutView : public BView {
public:
    explicit QBAboutView(BRect frame);
    ~QBAboutView() override;

private:
    void InitView();

    BBox* fBox = nullptr;
    BStringView* fTitle = nullptr;
    BStringView* fString1 = nullptr;
    BStringView* fString2 = nullptr;
    BStringView* fString3 = nullptr;
    BStringView* fString4 = nullptr;
    URLView* fURL = nullptr;
};

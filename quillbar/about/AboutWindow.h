#pragma once

#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"

class BBox;
class BStringView;
class URLView;

// The content of the about box: the product, credits and a link.
class QBAboutView : public BView {
public:
    explicit QBAboutView(BRect frame);

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

// The about box. It is made with new, shown by its maker, and closes only itself.
class QBAboutWindow : public BWindow {
public:
    // At the left-top corner of `frame`.
    explicit QBAboutWindow(BRect frame);

private:
    void InitWindow();

    QBAboutView* fAboutView = nullptr;
};

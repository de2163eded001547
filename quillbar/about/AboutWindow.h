#pragma once

#include "kits/interface/window/Window.h"

class QBAboutView;

// The about box. It is made with new, shown by its maker, and closes only itself.
class QBAboutWindow : public BWindow {
public:
    // At the left-top corner of `frame`.
    explicit QBAboutWindow(BRect frame);
    ~QBAboutWindow() override;

private:
    void InitWindow();

    QBAboutView* fAboutView = nullptr;
};

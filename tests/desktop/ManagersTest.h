#pragma once

#include "tests/desktop/DesktopTest.h"

// The bar under the window manager that the parameter names.
class ManagersTest : public OwnDesktopTest, public testing::WithParamInterface<const char*> {
protected:
    ManagersTest();

    void SetUp() override;
    void StartManager();
    // Ends the manager and starts it anew.
    void ReplaceManager();

    // Whether it has what not every manager has.
    bool HasDesktops() const;
    bool Minimises() const;

    void StartBar();
    bool Has(xcb_window_t focus) const;

    std::unique_ptr<test::ChildProcess> fManager;
};

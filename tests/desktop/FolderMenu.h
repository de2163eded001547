#pragma once

#include <vector>

#include "tests/desktop/Program.h"

// A menu that is open, read from the screen. Nothing but pixels tells what is in it, so the height
// of an item is learnt from the mark under the pointer.
class FolderMenu {
public:
    static constexpr int kSlots = 10;

    // Waits until the program's newest menu is painted. Moves the pointer.
    FolderMenu(test::Desk& desk, const Program& program);

    const test::Box& Frame() const { return fWindow.frame; }
    test::Box Slot(int digit) const;                                        // on the screen
    test::Picture SlotPicture(int digit) const { return fSlots.at(digit); } // without the mark
    bool SameLabel(int digit, int otherDigit) const;

private:
    test::WindowInfo fWindow;
    int fHeight = 0;
    int fBottom = 0; // of the last item, on the screen
    std::vector<test::Picture> fSlots;
};

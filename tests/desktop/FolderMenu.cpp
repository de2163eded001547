#include "tests/desktop/FolderMenu.h"

#include <stdexcept>

using namespace test;

namespace {

// The rows in which a column of pixels differs, if they lie together.
struct Band {
    int first = 0;
    int height = 0;
    bool operator==(const Band&) const = default;
};

Band Difference(const Picture& before, const Picture& after, int column) {
    Band band;
    if (before.height != after.height)
        return band;
    for (int y = 0; y < before.height; ++y) {
        if (before.At(column, y) == after.At(column, y))
            continue;
        if (band.height == 0)
            band.first = y;
        if (y != band.first + band.height)
            return {};
        ++band.height;
    }
    return band;
}

} // namespace

FolderMenu::FolderMenu(Desk& desk, const Program& program) {
    if (!WaitUntil([&] { return !program.Menus().empty(); }))
        throw std::runtime_error("no menu opened");
    fWindow = program.Menus().back();
    const int column = fWindow.frame.width - 5;
    const int row = fWindow.frame.height - 5; // the pointer will be there
    Picture plain;
    Band band;
    // A menu that opened under the pointer has an item marked until the pointer is seen to leave,
    // which gives a second band, or for a moment one at another place.
    const bool marked = WaitUntil([&] {
        desk.MoveTo(0, desk.Frame().height - 1);
        plain = desk.Settled(fWindow.frame);
        desk.MoveTo(fWindow.frame.x + column, fWindow.frame.y + row);
        return WaitUntil(
            [&] {
                const Band before = band;
                band = Difference(plain, desk.Grab(fWindow.frame), column);
                return band.height >= 8 && band == before && row < band.first + band.height;
            },
            std::chrono::milliseconds(500));
    });
    if (!marked)
        throw std::runtime_error("the menu does not mark the item under the pointer");
    fHeight = band.height;
    fBottom = fWindow.frame.y + band.first + band.height;
    if (!Frame().Contains(Slot(0)))
        throw std::runtime_error("the menu is too low for ten items");
    for (int digit = 0; digit < kSlots; ++digit) {
        const Box slot = Slot(digit);
        const auto first = plain.pixels.begin() + (slot.y - fWindow.frame.y) * plain.width;
        fSlots.push_back({slot.width, slot.height, {first, first + slot.height * slot.width}});
    }
}

Box FolderMenu::Slot(int digit) const {
    return {fWindow.frame.x, fBottom - (kSlots - digit) * fHeight, fWindow.frame.width, fHeight};
}

bool FolderMenu::SameLabel(int digit, int otherDigit) const {
    return fSlots.at(digit) == fSlots.at(otherDigit);
}

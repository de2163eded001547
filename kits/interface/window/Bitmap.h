#pragma once

#include <memory>
#include <vector>

#include "base/Rect.h"
#include "host/draw/Image.h"
#include "kits/interface/drawing/GraphicsDefs.h"
#include "kits/kernel/Locker.h"

class BView;
namespace host {
class Canvas;
}

// A picture off the screen, in logical pixels.
//
// One of B_RGBA32 has the display's resolution and starts transparent. It is drawn into through
// views if it accepts them, with the bitmap locked: its child views draw as in a window, but are
// attached to none, so none of their hooks is called. One of B_CMAP8 is filled through Bits().
//
// Any thread, one at a time: Lock() sees to that.
class BBitmap {
public:
    // `bounds` counts from its left-top corner. `acceptsViews` is for B_RGBA32.
    BBitmap(BRect bounds, color_space space, bool acceptsViews = false);
    // Deletes its views.
    ~BBitmap();

    BBitmap(const BBitmap&) = delete;
    BBitmap& operator=(const BBitmap&) = delete;

    // False if the bounds cover nothing.
    bool IsValid() const { return fBounds.IsValid(); }
    BRect Bounds() const { return fBounds; }
    color_space ColorSpace() const { return fSpace; }

    bool Lock() { return fLock.Lock(); }
    void Unlock() { fLock.Unlock(); }

    // Null but for B_CMAP8: rows from the top, each of BytesPerRow() bytes.
    uint8* Bits() { return fBits.empty() ? nullptr : fBits.data(); }
    int32 BytesPerRow() const {
        return fBits.empty() ? 0 : static_cast<int32>(fBounds.Width()) + 1;
    }

    // The view belongs to the bitmap from now on. Nothing is added to one that accepts no views.
    void AddChild(BView* child);

    // Its pixels as they are: those of B_RGBA32 in the display's resolution, one for each logical
    // pixel of B_CMAP8. Valid until the bitmap changes or is deleted. For the kit.
    host::Image Picture() const;

private:
    friend class BView;

    host::Canvas* CanvasFor(BView& view);

    const BRect fBounds;
    const color_space fSpace;
    BLocker fLock{"bitmap"};
    std::unique_ptr<host::Canvas> fCanvas; // of B_RGBA32
    std::vector<uint8> fBits;              // of B_CMAP8
    mutable std::vector<uint32> fColors;   // that its picture has
    std::unique_ptr<BView> fRoot;          // parent of the views; null if it accepts none
};

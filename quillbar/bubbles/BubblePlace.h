#pragma once

#include "base/Point.h"

class BTextView;
class BView;
class BWindow;

// The width and height (right minus left, bottom minus top) of a bubble around its text.
BPoint BubbleSize(const BTextView& text);

// Where the left-top corner of a bubble of that size goes for a pointer at `pointer`: below it, or
// above it where the monitor ends, and not beyond the monitor's right edge.
BPoint BubblePlace(BPoint size, BPoint pointer);

// The view of the window that can be seen at a point of the screen, or null. The window is locked
// by the caller.
BView* VisibleViewAt(BWindow& window, BPoint where);

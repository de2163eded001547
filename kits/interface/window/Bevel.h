#pragma once

#include "kits/interface/window/View.h"

// One pixel along the edges of `rect`, in the view's coordinates: the right and lower ones in one
// colour, the others, with the left-bottom and right-top corners left out, in the other. The view's
// high colour is changed. Window's thread, as all drawing.
void StrokeBevel(BView& view, BRect rect, rgb_color leftTop, rgb_color rightBottom);

#pragma once

#include "kits/interface/window/View.h"

// The two colours of an edge that is raised from a surface.
struct BevelPair {
    rgb_color light;
    rgb_color dark;
};

// The pair that belongs to a surface of this colour.
BevelPair BevelOf(rgb_color base);

// One pixel along two edges of `frame`, corners included. Where two edges meet, the one that is
// stroked last shows.
void StrokeLeftTop(BView* view, BRect frame, rgb_color color);
void StrokeRightBottom(BView* view, BRect frame, rgb_color color);

// Fills `rect` with a colour.
void FillWith(BView* view, BRect rect, rgb_color color);

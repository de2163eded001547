#pragma once

#include "kits/interface/window/View.h"

// A surface and the two colours of an edge that is raised from it.
struct Bevel {
    rgb_color fill;
    rgb_color light;
    rgb_color dark;
};

// Of a surface of this colour, all three of them tinted.
Bevel BevelOf(rgb_color base, float tint = B_NO_TINT);

// One pixel along two edges of `frame`, corners included. Where two edges meet, the one that is
// stroked last shows.
void StrokeLeftTop(BView* view, BRect frame, rgb_color color);
void StrokeRightBottom(BView* view, BRect frame, rgb_color color);

// Fills `rect` with a colour.
void FillWith(BView* view, BRect rect, rgb_color color);

#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "base/Color.h"
#include "base/Rect.h"
#include "host/draw/Image.h"
#include "host/draw/Text.h"

namespace host {

// The ground of a picture: white, or transparent, so that pixels under the picture show through.
enum class Ground {
    White,
    Transparent,
};

// How a colour or picture meets what is there.
enum class Blending {
    Replace, // takes its place; on a white ground all colours are opaque
    Over,    // covers it in proportion to its alpha
};

// A picture to draw into: the content of one window, or of an image.
//
// Coordinates are logical pixels of the picture with the platform's rule (a rectangle includes its
// right and bottom pixel, a line has a pixel's width). They are multiplied by the scale and snapped
// to device pixels so that neighbours meet without a hole; nothing but text is antialiased. Drawing
// outside the picture or the clip is cut off.
//
// One thread at a time; its owner sees to that.
class Canvas {
public:
    // A picture of `width` by `height` device pixels (1 at least, 16384 at most), with `scale`
    // device pixels per logical pixel.
    Canvas(int width, int height, double scale, Ground ground = Ground::White);
    ~Canvas();
    Canvas(const Canvas&) = delete;

    // Gives the picture another size; what both sizes cover is kept, the rest is ground.
    // The clip is the whole picture again.
    void Resize(int width, int height);

    // The picture as it stands. Valid until the next call of any other member.
    Image Picture();

    // The device pixels that `rect` covers.
    PixelRect Snap(BRect rect) const;

    // From now on drawing touches only what lies inside one of `rects`; without rects nothing.
    void SetClip(const std::vector<BRect>& rects);

    // From now on; Replace unless set.
    void SetBlending(Blending blending);

    void FillRect(BRect rect, rgb_color color);
    // The outermost pixels of `rect`.
    void StrokeRect(BRect rect, rgb_color color);
    // Both ends are drawn.
    void StrokeLine(BPoint from, BPoint to, rgb_color color);
    // The pixels between the points and those on the lines from each to the next.
    void FillPolygon(const std::vector<BPoint>& points, rgb_color color);
    void FillEllipse(BRect frame, rgb_color color);
    // Fills the device pixels of `rect` with all of `image`, whose alpha is multiplied by
    // `opacity`.
    void DrawImage(const Image& image, BRect rect, double opacity);
    // One line of text whose first character starts at `baseline`.
    void DrawText(const FontSpec& font, std::string_view text, BPoint baseline, rgb_color color);
    // The lines that fit into `height`; the last one ends with an ellipsis if text is left.
    void DrawBlock(const TextBlock& block, BPoint leftTop, float height);

private:
    struct State;
    std::unique_ptr<State> fState;
};

} // namespace host

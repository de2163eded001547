#include "host/draw/Canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

#include <cairo.h>

#include "host/draw/TextLayouts.h"

namespace host {

namespace {

constexpr int kMaxSide = 16384;
// Cairo's coordinates are 24 bits before the point.
constexpr double kFarthest = 1 << 20;

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct DestroyContext {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, DestroySurface>;
using Context = std::unique_ptr<cairo_t, DestroyContext>;

int SnapEdge(double edge) {
    if (std::isnan(edge))
        return 0;
    return static_cast<int>(std::floor(std::clamp(edge, -kFarthest, kFarthest) + 0.5));
}

int Between(int from, int to, int step, int steps) {
    return from + static_cast<int>(std::lround(static_cast<double>(to - from) * step / steps));
}

int LongestWay(const PixelRect& from, const PixelRect& to) {
    return std::max({std::abs(to.left - from.left), std::abs(to.top - from.top),
                     std::abs(to.right - from.right), std::abs(to.bottom - from.bottom)});
}

BRect PixelAt(BPoint point) {
    return {point, point};
}

} // namespace

struct Canvas::State {
    Surface surface;
    Context context;
    double scale;
    Ground ground;
    Blending blending = Blending::Replace;

    void MakeSurface(int width, int height);
    PixelRect Extent() const {
        return {0, 0, cairo_image_surface_get_width(surface.get()),
                cairo_image_surface_get_height(surface.get())};
    }

    bool IsSolid() const { return ground == Ground::White && blending == Blending::Replace; }
    void SetColor(rgb_color color) {
        cairo_set_source_rgba(context.get(), color.red / 255.0, color.green / 255.0,
                              color.blue / 255.0, IsSolid() ? 1 : color.alpha / 255.0);
    }
    void SetOperator();
    void AddRect(const PixelRect& rect) {
        if (!rect.IsEmpty())
            cairo_rectangle(context.get(), rect.left, rect.top, rect.Width(), rect.Height());
    }
    void AddLine(const PixelRect& from, const PixelRect& to);
};

void Canvas::State::MakeSurface(int width, int height) {
    bool isWhite = ground == Ground::White;
    surface.reset(cairo_image_surface_create(isWhite ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32,
                                             std::clamp(width, 1, kMaxSide),
                                             std::clamp(height, 1, kMaxSide)));
    context.reset(cairo_create(surface.get()));
    if (isWhite) {
        cairo_set_source_rgb(context.get(), 1, 1, 1);
        cairo_paint(context.get());
    }
    cairo_set_antialias(context.get(), CAIRO_ANTIALIAS_NONE);
    SetOperator();
}

// A picture without alpha cannot be replaced by less than a colour.
void Canvas::State::SetOperator() {
    bool replaces = ground == Ground::Transparent && blending == Blending::Replace;
    cairo_set_operator(context.get(), replaces ? CAIRO_OPERATOR_SOURCE : CAIRO_OPERATOR_OVER);
}

// Moves the pen, one logical pixel as it is snapped, from one end to the other. Only the part near
// the picture is walked, a line may be far longer.
void Canvas::State::AddLine(const PixelRect& from, const PixelRect& to) {
    if (from.left == to.left || from.top == to.top) {
        AddRect({std::min(from.left, to.left), std::min(from.top, to.top),
                 std::max(from.right, to.right), std::max(from.bottom, to.bottom)});
        return;
    }
    PixelRect extent = Extent();
    int steps = LongestWay(from, to);
    for (int step = 0; step <= steps; step++) {
        PixelRect pen{Between(from.left, to.left, step, steps),
                      Between(from.top, to.top, step, steps),
                      Between(from.right, to.right, step, steps),
                      Between(from.bottom, to.bottom, step, steps)};
        pen.right = std::max(pen.right, pen.left + 1);
        pen.bottom = std::max(pen.bottom, pen.top + 1);
        if (pen.right > 0 && pen.bottom > 0 && pen.left < extent.right && pen.top < extent.bottom)
            AddRect(pen);
    }
}

Canvas::Canvas(int width, int height, double scale, Ground ground)
    : fState(std::make_unique<State>()) {
    fState->scale = scale;
    fState->ground = ground;
    fState->MakeSurface(width, height);
}

Canvas::~Canvas() = default;

void Canvas::Resize(int width, int height) {
    Surface old = std::move(fState->surface);
    fState->MakeSurface(width, height);
    cairo_set_source_surface(fState->context.get(), old.get(), 0, 0);
    cairo_rectangle(fState->context.get(), 0, 0, cairo_image_surface_get_width(old.get()),
                    cairo_image_surface_get_height(old.get()));
    cairo_fill(fState->context.get());
}

Image Canvas::Picture() {
    cairo_surface_t* surface = fState->surface.get();
    cairo_surface_flush(surface);
    return {cairo_image_surface_get_data(surface), cairo_image_surface_get_width(surface),
            cairo_image_surface_get_height(surface), cairo_image_surface_get_stride(surface)};
}

PixelRect Canvas::Snap(BRect rect) const {
    if (!rect.IsValid())
        return {};
    double scale = fState->scale;
    return {SnapEdge(rect.left * scale), SnapEdge(rect.top * scale),
            SnapEdge((rect.right + 1.0) * scale), SnapEdge((rect.bottom + 1.0) * scale)};
}

void Canvas::SetClip(const std::vector<BRect>& rects) {
    cairo_t* context = fState->context.get();
    cairo_reset_clip(context);
    for (const BRect& rect : rects)
        fState->AddRect(Snap(rect));
    cairo_clip(context);
}

void Canvas::SetBlending(Blending blending) {
    if (std::exchange(fState->blending, blending) != blending)
        fState->SetOperator();
}

void Canvas::FillRect(BRect rect, rgb_color color) {
    fState->SetColor(color);
    fState->AddRect(Snap(rect));
    cairo_fill(fState->context.get());
}

void Canvas::StrokeRect(BRect rect, rgb_color color) {
    if (!rect.IsValid())
        return;
    fState->SetColor(color);
    fState->AddRect(Snap({rect.LeftTop(), rect.RightTop()}));
    fState->AddRect(Snap({rect.LeftBottom(), rect.RightBottom()}));
    fState->AddRect(Snap({rect.LeftTop(), rect.LeftBottom()}));
    fState->AddRect(Snap({rect.RightTop(), rect.RightBottom()}));
    cairo_fill(fState->context.get());
}

void Canvas::StrokeLine(BPoint from, BPoint to, rgb_color color) {
    fState->SetColor(color);
    fState->AddLine(Snap(PixelAt(from)), Snap(PixelAt(to)));
    cairo_fill(fState->context.get());
}

// The outline goes through the points' pixels and belongs to the polygon.
void Canvas::FillPolygon(const std::vector<BPoint>& points, rgb_color color) {
    if (points.empty())
        return;
    cairo_t* context = fState->context.get();
    fState->SetColor(color);
    for (const BPoint& point : points) {
        PixelRect pixel = Snap(PixelAt(point));
        cairo_line_to(context, (pixel.left + pixel.right) / 2.0, (pixel.top + pixel.bottom) / 2.0);
    }
    cairo_fill(context);
    BPoint previous = points.back();
    for (const BPoint& point : points) {
        fState->AddLine(Snap(PixelAt(previous)), Snap(PixelAt(point)));
        previous = point;
    }
    cairo_fill(context);
}

void Canvas::FillEllipse(BRect frame, rgb_color color) {
    PixelRect box = Snap(frame);
    if (box.IsEmpty())
        return;
    cairo_t* context = fState->context.get();
    fState->SetColor(color);
    cairo_save(context);
    cairo_translate(context, (box.left + box.right) / 2.0, (box.top + box.bottom) / 2.0);
    cairo_scale(context, box.Width() / 2.0, box.Height() / 2.0);
    cairo_arc(context, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(context);
    cairo_fill(context);
}

void Canvas::DrawImage(const Image& image, BRect rect, double opacity) {
    PixelRect place = Snap(rect);
    if (place.IsEmpty() || image.width <= 0 || image.height <= 0)
        return;
    // Cairo only reads the pixels of a source.
    Surface source(cairo_image_surface_create_for_data(const_cast<std::uint8_t*>(image.pixels),
                                                       CAIRO_FORMAT_ARGB32, image.width,
                                                       image.height, image.stride));
    cairo_t* context = fState->context.get();
    cairo_save(context);
    cairo_rectangle(context, place.left, place.top, place.Width(), place.Height());
    cairo_clip(context);
    cairo_translate(context, place.left, place.top);
    cairo_scale(context, place.Width() / static_cast<double>(image.width),
                place.Height() / static_cast<double>(image.height));
    cairo_set_source_surface(context, source.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
    cairo_paint_with_alpha(context, opacity);
    cairo_restore(context);
}

void Canvas::DrawText(const FontSpec& font, std::string_view text, BPoint baseline,
                      rgb_color color) {
    if (text.empty())
        return;
    fState->SetColor(color);
    cairo_move_to(fState->context.get(), SnapEdge(baseline.x * fState->scale),
                  SnapEdge(baseline.y * fState->scale));
    TextLayouts layouts;
    pango_cairo_show_layout_line(fState->context.get(), layouts.LineOf(font, text, fState->scale));
    cairo_new_path(fState->context.get());
}

void Canvas::DrawBlock(const TextBlock& block, BPoint leftTop, float height) {
    cairo_t* context = fState->context.get();
    cairo_move_to(context, SnapEdge(leftTop.x * fState->scale),
                  SnapEdge(leftTop.y * fState->scale));
    TextLayouts layouts;
    const TextLayouts::Layout layout = layouts.MakeLayout(block, fState->scale);
    TextLayouts::CutLayout(layout.get(), height, fState->scale);
    pango_cairo_show_layout(context, layout.get());
    cairo_new_path(context);
}

} // namespace host

#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include <pango/pangocairo.h>

#include "host/draw/Text.h"

namespace host {

inline constexpr std::string_view kEllipsis = "\xe2\x80\xa6";

// `text` as it is shown: valid UTF-8 on one line. Bytes that are not UTF-8 become
// replacement marks, each control character and line separator becomes one dot, and what lies
// beyond a few thousand bytes, which no window shows, is left out. Any thread.
std::string VisibleText(std::string_view text);

// The process's only access to Pango, whose objects allow one thread at a time: an object of this
// class holds the lock, and what it returns is used while it exists.
class TextLayouts {
public:
    struct Release {
        void operator()(gpointer object) const { g_object_unref(object); }
    };
    using Layout = std::unique_ptr<PangoLayout, Release>;

    TextLayouts();

    // `text` as VisibleText shows it, on one line. Kept for the next call with the same text; the
    // line itself is valid until the next call with another one.
    PangoLayoutLine* LineOf(const FontSpec& font, std::string_view text, double scale);
    // The same for a text that will hardly be asked for again: it is not kept.
    Layout MakeLayout(const FontSpec& font, std::string_view text, double scale);

    // The lines of `block`, and the same cut to a height, with an ellipsis in the last line.
    Layout MakeLayout(const TextBlock& block, double scale);
    static void CutLayout(PangoLayout* layout, float height, double scale);

    // In device pixels.
    cairo_font_extents_t ExtentsOf(const FontSpec& font, double scale);

private:
    struct Kept;
    Kept& fKept;
    std::unique_lock<std::mutex> fLock;
};

} // namespace host

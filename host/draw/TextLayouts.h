#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include <pango/pangocairo.h>

#include "host/draw/TextBlock.h"

namespace host {

struct ReleaseObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};

// `text` as it is shown: valid UTF-8 on one line. Bytes that are not UTF-8 become
// replacement marks, each control character and line separator becomes one dot, and what lies
// beyond a few thousand bytes, which no window shows, is left out. Any thread.
std::string VisibleText(std::string_view text);

// The process's only access to Pango, whose objects allow one thread at a time: hold Lock() as long
// as an object that came from it is in use. Made with the first use.
class TextLayouts {
public:
    // A font at a size in device pixels.
    struct FontKey {
        int pangoSize;
        bool bold;

        bool operator==(const FontKey&) const = default;
    };

    using Layout = std::unique_ptr<PangoLayout, ReleaseObject>;
    using Description =
        std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)>;

    static TextLayouts& Shared();
    static FontKey KeyOf(const FontSpec& font, double scale);
    static Description Describe(FontKey font);

    std::unique_lock<std::mutex> Lock() { return std::unique_lock(fLock); }

    // `text` as VisibleText shows it, on one line. Kept for the next call with the same text.
    PangoLayoutLine* LineOf(FontKey font, std::string_view text);

    // The same for a text that will hardly be asked for again: it is not kept.
    Layout MakeLayout(FontKey font, std::string_view text);

    // The lines of `block`, and the same cut to a height, with an ellipsis in the last line.
    Layout MakeLayout(const TextBlock& block, double scale);
    static void CutLayout(PangoLayout* layout, float height, double scale);

    // In device pixels.
    cairo_font_extents_t ExtentsOf(FontKey font);

private:
    struct Entry {
        FontKey font;
        std::string text; // as it was given
        Layout layout;
    };
    struct Extents {
        FontKey font;
        cairo_font_extents_t extents;
    };

    TextLayouts();

    std::mutex fLock;
    std::unique_ptr<PangoContext, ReleaseObject> fContext;
    std::list<Entry> fEntries; // the last used first
    std::list<Extents> fExtents;
};

} // namespace host

// The least that a window with text can be: Cairo and Pango on xcb, one label, of the bar's size
// and in its place. A press shows a menu that was made beforehand, the next one hides it.

#include <cairo-xcb.h>
#include <cstdlib>
#include <pango/pangocairo.h>
#include <string>
#include <xcb/xcb.h>

namespace {

struct Server {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    xcb_screen_t* screen = nullptr;
    xcb_visualtype_t* visual = nullptr;

    bool Open() {
        if (xcb_connection_has_error(connection) != 0)
            return false;
        screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        auto depth = xcb_screen_allowed_depths_iterator(screen);
        while (depth.data->depth != screen->root_depth)
            xcb_depth_next(&depth);
        visual = xcb_depth_visuals_iterator(depth.data).data;
        return true;
    }
};

// A window and its picture, which answers exposes.
struct Window {
    Server& server;
    int width;
    int height;
    xcb_window_t id = xcb_generate_id(server.connection);
    cairo_surface_t* picture = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_surface_t* surface = nullptr;
    bool shown = false;

    void Create(int x, int y, bool managed) {
        const uint32_t values[] = {!managed, XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS};
        xcb_create_window(server.connection, XCB_COPY_FROM_PARENT, id, server.screen->root,
                          static_cast<int16_t>(x), static_cast<int16_t>(y),
                          static_cast<uint16_t>(width), static_cast<uint16_t>(height), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        const int32_t userPosition[18] = {1};
        xcb_change_property(server.connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS,
                            XCB_ATOM_WM_SIZE_HINTS, 32, 18, userPosition);
        surface = cairo_xcb_surface_create(server.connection, id, server.visual, width, height);
    }

    void Draw(int lines, const char* text) {
        cairo_t* context = cairo_create(picture);
        cairo_set_source_rgb(context, 0.847, 0.847, 0.847);
        cairo_paint(context);
        cairo_set_source_rgb(context, 0, 0, 0);
        PangoLayout* layout = pango_cairo_create_layout(context);
        PangoFontDescription* font = pango_font_description_from_string("sans-serif 9");
        pango_layout_set_font_description(layout, font);
        for (int line = 0; line < lines; ++line) {
            const std::string label = std::to_string(line) + text;
            pango_layout_set_text(layout, label.c_str(), -1);
            cairo_move_to(context, 4, 4 + 18 * line);
            pango_cairo_show_layout(context, layout);
        }
        pango_font_description_free(font);
        g_object_unref(layout);
        cairo_destroy(context);
    }

    void Present() {
        cairo_t* context = cairo_create(surface);
        cairo_set_source_surface(context, picture, 0, 0);
        cairo_paint(context);
        cairo_destroy(context);
        cairo_surface_flush(surface);
        xcb_flush(server.connection);
    }

    void SetShown(bool show) {
        shown = show;
        if (show)
            xcb_map_window(server.connection, id);
        else
            xcb_unmap_window(server.connection, id);
        xcb_flush(server.connection);
    }
};

} // namespace

int main() {
    Server server;
    if (!server.Open())
        return 1;
    Window bar{server, 24, 266};
    bar.Create(29, 29, true);
    bar.SetShown(true);
    bar.Draw(1, "");
    Window menu{server, 300, 224};
    bool menuIsMade = false;
    while (xcb_generic_event_t* event = xcb_wait_for_event(server.connection)) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_BUTTON_PRESS)
            menu.SetShown(!menu.shown);
        if (type == XCB_EXPOSE) {
            const bool isMenu = reinterpret_cast<xcb_expose_event_t*>(event)->window == menu.id;
            (isMenu ? menu : bar).Present();
            if (!menuIsMade) { // what is needed later comes after the first paint
                menu.Create(54, 60, false);
                menu.Draw(12, " - Site [http://www.example.org/a/path]");
                menuIsMade = true;
            }
        }
        free(event);
    }
}

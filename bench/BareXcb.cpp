// The least that a window can be: xcb and a fill, of the bar's size and in its place.

#include <cstdlib>
#include <xcb/xcb.h>

int main() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0)
        return 1;
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    const uint32_t events = XCB_EVENT_MASK_EXPOSURE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 29, 29, 24, 266, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    const int32_t userPosition[18] = {1};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, userPosition);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    const uint32_t grey = 0xd8d8d8;
    xcb_create_gc(connection, context, window, XCB_GC_FOREGROUND, &grey);
    xcb_map_window(connection, window);
    xcb_flush(connection);
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        if ((event->response_type & 0x7f) == XCB_EXPOSE) {
            const xcb_rectangle_t all = {0, 0, 24, 266};
            xcb_poly_fill_rectangle(connection, window, context, 1, &all);
            xcb_flush(connection);
        }
        free(event);
    }
}

#include "tests/support/Picture.h"

#include <algorithm>
#include <cairo.h>

namespace test {

size_t Picture::Count(uint32_t colour) const {
    return static_cast<size_t>(std::count(pixels.begin(), pixels.end(), colour));
}

bool Picture::SavePng(const std::string& path) const {
    auto copy = pixels; // the library takes no constant ones
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(copy.data()),
                                            CAIRO_FORMAT_RGB24, width, height, width * 4);
    const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
    cairo_surface_destroy(surface);
    return status == CAIRO_STATUS_SUCCESS;
}

} // namespace test

#include "platform/linux/X11Screen.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace corvalis {

double x11PrimaryScreenWidth() {
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) return 0;
    int preferred = 0;
    xcb_connection_t* connection = xcb_connect(display, &preferred);
    double width = 0;
    if (!xcb_connection_has_error(connection)) {
        xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(connection));
        for (int i = 0; it.rem && i < preferred; ++i) xcb_screen_next(&it);
        if (it.rem) width = it.data->width_in_pixels;
    }
    xcb_disconnect(connection);
    return width;
}

}  // namespace corvalis

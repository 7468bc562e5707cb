#pragma once

namespace corvalis {

// Width in pixels of the X server's first screen, or 0 when there is no display.
double x11PrimaryScreenWidth();

}  // namespace corvalis

#pragma once
// The width of the primary screen, which picks the default preview sizes. The
// host installs a source when it has a display; without one the width is 0.

#include <functional>

namespace corvalis {

// Width of the primary screen's frame in points; 0 when there is no screen.
double mainScreenWidth();
void setMainScreenWidthSource(std::function<double()> source);

}  // namespace corvalis

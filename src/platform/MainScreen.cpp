#include "platform/MainScreen.h"

namespace corvalis {

namespace {
std::function<double()>& widthSource() {
    static std::function<double()> source;
    return source;
}
}  // namespace

double mainScreenWidth() {
    const auto& source = widthSource();
    return source ? source() : 0.0;
}

void setMainScreenWidthSource(std::function<double()> source) { widthSource() = std::move(source); }

}  // namespace corvalis

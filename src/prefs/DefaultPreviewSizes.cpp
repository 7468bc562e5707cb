#include "prefs/DefaultPreviewSizes.h"

#include "platform/MainScreen.h"

namespace corvalis {

float artworkSizeForScreenWidth(double width) {
    if (width >= 2560) return 300;
    if (width >= 1920) return 240;
    if (width >= 1600) return 200;
    if (width >= 1344) return 160;
    if (width >= 1280) return 150;
    return width >= 1024 ? 120 : 100;
}

float imageSizeForScreenWidth(double width) {
    if (width >= 2560) return 480;
    if (width >= 1600) return 400;  // 1920 has no size of its own
    if (width >= 1344) return 320;
    if (width >= 1280) return 300;
    if (width >= 1024) return 240;
    return width >= 800 ? 200 : 150;
}

float movieSizeForScreenWidth(double width) {
    if (width >= 1920) return 360;
    if (width >= 1600) return 300;
    return width >= 1280 ? 240 : 200;
}

float otherFileSizeForScreenWidth(double width) {
    if (width >= 2560) return 500;
    if (width >= 1920) return 450;
    if (width >= 1600) return 400;
    if (width >= 1344) return 320;
    if (width >= 1280) return 300;
    return width >= 1024 ? 240 : 200;
}

float ArtworkDefaultSize() { return artworkSizeForScreenWidth(mainScreenWidth()); }
float ImageDefaultSize() { return imageSizeForScreenWidth(mainScreenWidth()); }
float MovieDefaultSize() { return movieSizeForScreenWidth(mainScreenWidth()); }
float OtherFileDefaultSize() { return otherFileSizeForScreenWidth(mainScreenWidth()); }
float PDFDefaultSize() { return OtherFileDefaultSize(); }
float TextFileDefaultSize() { return OtherFileDefaultSize(); }

}  // namespace corvalis

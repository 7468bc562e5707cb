#pragma once
// The Configure Previews sheet without its widgets: the six maximum preview
// sizes with their limits and snapping, the preview options, and the filter of
// file extensions, of which the controller only ever hears the effective list.

#include <array>
#include <string>
#include <vector>

namespace corvalis {

class CorvalisPreferences;

struct PreviewSizeLimits {
    const char* key;
    const char* captionKey;
    float minimum;
    float maximum;
    float (*defaultSize)();
};

class ConfigurePreviewsController {
public:
    static constexpr std::size_t kSizeCount = 6;
    static const std::array<PreviewSizeLimits, kSizeCount>& sizeLimits();

    explicit ConfigurePreviewsController(CorvalisPreferences& prefs) : _prefs(prefs) {}

    // Once after each start or import, before the sheet shows: stored sizes out of
    // their limits are clamped, fractions cut, and each repair written back.
    void _initializeConfigurePreviewsSheet();
    bool prepared() const { return _prepared; }
    void forget() { _prepared = false; }

    float size(std::size_t index) const;
    // A slider moved: whole points, and a value ending in 9 rounds up (199 to 200).
    // False when the stored size is that already.
    bool onChangeSize(std::size_t index, double sliderValue);
    static int snappedSize(double sliderValue);
    void onRestoreSizes();

    // The extension filter: the stored list as the field shows it, and the text typed.
    void onEnableFilterExtensions(bool on);
    std::string extensionsText() const;
    void extensionsTextDidChange(const std::string& text);
    static std::vector<std::string> extensionsFromText(const std::string& text);

private:
    void storeSize(std::size_t index, float value);

    CorvalisPreferences& _prefs;
    bool _prepared = false;
};

}  // namespace corvalis

#include "menus/ConfigurePreviewsController.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "fileutils/NameOrder.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/DefaultPreviewSizes.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Array;
using plist::Value;

const std::array<PreviewSizeLimits, ConfigurePreviewsController::kSizeCount>& ConfigurePreviewsController::sizeLimits() {
    static const std::array<PreviewSizeLimits, kSizeCount> limits{{
        {keys::ArtworkMaxSize, "ArtworkPreviewSize", 100, 600, &ArtworkDefaultSize},
        {keys::ImageMaxSize, "ImagePreviewSize", 100, 600, &ImageDefaultSize},
        {keys::MovieMaxSize, "MoviePreviewSize", 200, 600, &MovieDefaultSize},
        {keys::PDFMaxSize, "PDFPreviewSize", 200, 600, &PDFDefaultSize},
        {keys::TextFileMaxSize, "TextFilePreviewSize", 200, 600, &TextFileDefaultSize},
        {keys::OtherFileMaxSize, "OtherFilePreviewSize", 200, 600, &OtherFileDefaultSize},
    }};
    return limits;
}

void ConfigurePreviewsController::storeSize(std::size_t index, float value) {
    const char* key = sizeLimits()[index].key;
    _prefs.setFloat(value, key);
    _prefs.synchronizeValue(Value::real32(value), key);
}

void ConfigurePreviewsController::_initializeConfigurePreviewsSheet() {
    for (std::size_t i = 0; i < kSizeCount; ++i) {
        const PreviewSizeLimits& limits = sizeLimits()[i];
        float stored = _prefs.floatForKey(limits.key);
        float repaired = stored < limits.minimum   ? limits.minimum
                         : stored > limits.maximum ? limits.maximum
                                                   : std::trunc(stored);
        // NaN fails every comparison above and is not a size at all.
        if (std::isnan(stored)) repaired = limits.minimum;
        if (repaired != stored || std::isnan(stored)) storeSize(i, repaired);
    }
    _prepared = true;
}

float ConfigurePreviewsController::size(std::size_t index) const {
    return _prefs.floatForKey(sizeLimits()[index].key);
}

int ConfigurePreviewsController::snappedSize(double sliderValue) {
    int size = static_cast<int>(std::trunc(sliderValue));
    return size % 10 == 9 ? size + 1 : size;
}

bool ConfigurePreviewsController::onChangeSize(std::size_t index, double sliderValue) {
    if (index >= kSizeCount) return false;
    int size = snappedSize(sliderValue);
    if (static_cast<float>(size) == this->size(index)) return false;
    storeSize(index, static_cast<float>(size));
    return true;
}

void ConfigurePreviewsController::onRestoreSizes() {
    for (std::size_t i = 0; i < kSizeCount; ++i) storeSize(i, sizeLimits()[i].defaultSize());
}

void ConfigurePreviewsController::onEnableFilterExtensions(bool on) {
    _prefs.setBool(on, keys::EnableFilterExtensions);
    Array effective = on ? _prefs.arrayForKey(keys::FilteredExtensions).value_or(Array()) : Array();
    _prefs.synchronizeValue(effective, keys::FilteredExtensions);
}

std::string ConfigurePreviewsController::extensionsText() const {
    std::string text;
    for (const Value& extension : _prefs.arrayForKey(keys::FilteredExtensions).value_or(Array()))
        if (const std::string* word = extension.string()) text += (text.empty() ? "" : " ") + *word;
    return text;
}

std::vector<std::string> ConfigurePreviewsController::extensionsFromText(const std::string& text) {
    std::string spaced = text;
    std::replace_if(spaced.begin(), spaced.end(), [](char c) { return c == ',' || c == '.'; }, ' ');
    std::vector<std::string> extensions;
    std::istringstream words(spaced);
    for (std::string word; words >> word;)
        if (std::find(extensions.begin(), extensions.end(), word) == extensions.end()) extensions.push_back(word);
    std::sort(extensions.begin(), extensions.end(),
              [](const std::string& a, const std::string& b) { return finderCompare(a, b) < 0; });
    return extensions;
}

void ConfigurePreviewsController::extensionsTextDidChange(const std::string& text) {
    Array extensions;
    for (const std::string& extension : extensionsFromText(text)) extensions.append(extension);
    _prefs.setArray(extensions, keys::FilteredExtensions);
    _prefs.synchronizeValue(extensions, keys::FilteredExtensions);
}

}  // namespace corvalis

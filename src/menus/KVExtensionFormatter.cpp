#include "menus/KVExtensionFormatter.h"

#include <algorithm>
#include <string_view>

namespace corvalis {

namespace {

constexpr std::string_view kAllowedPunctuation = "!#$&()+-?^_~ .,\t\n\r";

bool allowed(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           kAllowedPunctuation.find(static_cast<char>(c)) != std::string_view::npos;
}

std::string replaceAll(const std::string& text, std::string_view what, std::string_view with) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, from)) {
        result.append(text, from, at - from).append(with);
        from = at + what.size();
    }
    return result.append(text, from, std::string::npos);
}

}  // namespace

std::string KVExtensionFormatter::_cleanUpString(const std::string& text) {
    std::string clean = text;
    std::transform(clean.begin(), clean.end(), clean.begin(), [](unsigned char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : static_cast<char>(c);
    });
    for (std::string_view breakOrTab : {"\r\n", "\n", "\r", "\t"}) clean = replaceAll(clean, breakOrTab, " ");
    return clean;
}

bool KVExtensionFormatter::acceptable(const std::string& text) const {
    // Every allowed character is one byte, so the limit counts characters.
    if (_maxLength != 0 && text.size() > _maxLength) return false;
    return std::all_of(text.begin(), text.end(), [](char c) { return allowed(static_cast<unsigned char>(c)); });
}

bool KVExtensionFormatter::isPartialStringValid(const std::string& text, std::string* newEditingString) const {
    if (text.empty()) return true;
    if (!acceptable(text)) return false;
    if (newEditingString) *newEditingString = _cleanUpString(text);
    return true;
}

std::optional<std::string> KVExtensionFormatter::getObjectValue(const std::string& text) const {
    if (text.empty()) return std::string();
    if (!acceptable(text)) return std::nullopt;
    return _cleanUpString(text);
}

}  // namespace corvalis

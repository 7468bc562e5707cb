#pragma once
// The rules of the field of file extensions: which characters may be typed,
// an optional length limit, and the text cleaned to lower case on one line.

#include <cstddef>
#include <optional>
#include <string>

namespace corvalis {

class KVExtensionFormatter {
public:
    explicit KVExtensionFormatter(std::size_t maxLength = 0) : _maxLength(maxLength) {}

    void setMaxLength(std::size_t maxLength) { _maxLength = maxLength; }
    std::size_t maxLength() const { return _maxLength; }

    // Lower case, with every line break and tab turned into one space.
    static std::string _cleanUpString(const std::string& text);
    // Text being typed: refused (the caller beeps) when too long or holding a character
    // that cannot be part of an extension list; else valid, cleaned into `newEditingString`.
    bool isPartialStringValid(const std::string& text, std::string* newEditingString) const;
    // The value of finished text, none when it is refused.
    std::optional<std::string> getObjectValue(const std::string& text) const;

private:
    bool acceptable(const std::string& text) const;

    std::size_t _maxLength;
};

}  // namespace corvalis

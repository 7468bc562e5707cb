#pragma once
// What every loaded domain must satisfy, whatever it was loaded from. Shared by
// the property test and the fuzz targets; answers the first violation found.

#include <string>

#include "plist/Value.h"
#include "schema/PreferenceKeys.h"

namespace corvalis::test {

// Deep equality in which a NaN equals itself, so that "unchanged" can be
// checked on any value a file may hold; dictionaries compare in any order.
inline bool sameValue(const plist::Value& a, const plist::Value& b) {
    if (a.type() != b.type()) return false;
    if (const plist::Real* x = a.real()) {
        const plist::Real* y = b.real();
        return (x->value != x->value && y->value != y->value) || x->value == y->value;
    }
    if (const plist::Array* x = a.array()) {
        const plist::Array& y = *b.array();
        if (x->size() != y.size()) return false;
        for (std::size_t i = 0; i < x->size(); ++i)
            if (!sameValue((*x)[i], y[i])) return false;
        return true;
    }
    if (const plist::Dictionary* x = a.dictionary()) {
        const plist::Dictionary& y = *b.dictionary();
        if (x->size() != y.size()) return false;
        for (const auto& [key, value] : *x)
            if (!y.contains(key) || !sameValue(value, y[key])) return false;
        return true;
    }
    return a == b;
}

inline std::string menuViolation(const plist::Dictionary& domain, const char* key) {
    const plist::Array* menu = domain[key].array();
    if (!menu) return std::string(key) + " is not an array";
    bool previousIsSeparator = true;  // so that a leading separator counts as a violation
    for (const plist::Value& item : *menu) {
        const plist::Dictionary* record = item.dictionary();
        const std::string* kind = record ? (*record)[keys::Item].string() : nullptr;
        if (!kind) return std::string(key) + " holds a record without a kind";
        bool separator = *kind == "Separator";
        if (separator && previousIsSeparator) return std::string(key) + " has a misplaced separator";
        previousIsSeparator = separator;
    }
    if (!menu->empty() && previousIsSeparator) return std::string(key) + " ends with a separator";
    return {};
}

inline std::string loadedDomainViolation(const plist::Dictionary& domain) {
    const plist::Array* hotKeys = domain[keys::HotKeys].array();
    if (!hotKeys || hotKeys->size() != 4) return "HotKeys is not an array of four";
    for (const plist::Value& hotKey : *hotKeys) {
        const plist::Dictionary* record = hotKey.dictionary();
        std::optional<std::int32_t> position = record ? (*record)[keys::Position].toInt32() : std::nullopt;
        if (!position || *position < 0 || *position > 5) return "a hot key has no position from 0 to 5";
        for (const char* part : {keys::Character, keys::Modifiers, keys::VirtualKeyCode})
            if (!(*record)[part].isNumber()) return std::string("a hot key lacks its ") + part;
    }
    const plist::Array* groups = domain[keys::Groups].array();
    if (!groups) return "Groups is not an array";
    int excluded = 0;
    for (const plist::Value& group : *groups) {
        const plist::Dictionary* record = group.dictionary();
        if (!record || !(*record)[keys::Name].string() || !(*record)[keys::Applications].array() ||
            !(*record)[keys::CanBeDeleted].boolean())
            return "a group record is incomplete";
        if (!*(*record)[keys::CanBeDeleted].boolean()) ++excluded;
        for (const plist::Value& application : *(*record)[keys::Applications].array())
            if (!application.dictionary() || !(*application.dictionary())[keys::Path].string())
                return "an application record has no path";
    }
    if (excluded != 1) return "there is not exactly one excluded group";
    const plist::Dictionary* shortcuts = domain[keys::KeyboardShortcuts].dictionary();
    if (!shortcuts || shortcuts->size() != 18) return "KeyboardShortcuts does not hold eighteen entries";
    for (int id = 1000; id <= 1017; ++id)
        if (!(*shortcuts)[std::to_string(id)].dictionary()) return "a keyboard shortcut is missing";
    for (const char* menu : {keys::OpenMenuItems, keys::QuitMenuItems, keys::SwitchMenuItems, keys::SpecialMenuItems})
        if (std::string violation = menuViolation(domain, menu); !violation.empty()) return violation;
    return {};
}

}  // namespace corvalis::test

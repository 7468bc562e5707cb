#include "fileutils/KVOperatingSystem.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace corvalis {

namespace {

constexpr int kNewestMinor = 13;  // later systems answer every test as 10.13 does

// A decimal field; very long ones saturate, since only small values matter.
std::optional<int> parseField(std::string_view text) {
    if (text.empty()) return std::nullopt;
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = std::min(value * 10 + (c - '0'), 100000);
    }
    return value;
}

// "10", "10.6" or "10.6.8"; nothing for anything else.
std::optional<std::array<int, 3>> parseVersion(std::string_view text) {
    std::array<int, 3> fields{0, 0, 0};
    std::size_t count = 0;
    std::size_t start = 0;
    for (;;) {
        if (count == fields.size()) return std::nullopt;
        std::size_t dot = text.find('.', start);
        auto field = parseField(text.substr(start, dot == std::string_view::npos
                                                       ? std::string_view::npos
                                                       : dot - start));
        if (!field) return std::nullopt;
        fields[count++] = *field;
        if (dot == std::string_view::npos) return fields;
        start = dot + 1;
    }
}

}  // namespace

KVOperatingSystem::SystemVersion KVOperatingSystem::SystemVersion::probe(
    std::optional<std::string_view> envValue) {
    const SystemVersion newest{10, kNewestMinor, 0, 0};
    auto fields = envValue ? parseVersion(*envValue) : std::nullopt;
    if (!fields) return newest;
    auto [major, minor, patch] = *fields;
    // Majors after 10 are newer than anything known; before 10 is no system at all.
    if (major != 10 || minor > kNewestMinor) return newest;
    if (minor >= 10) return {10, minor, patch, 0};
    // Older systems have only the packed number, one hex digit per field and
    // each field capped at 9: 10.4.11 reads 0x1049.
    unsigned legacy = 0x1000u | (static_cast<unsigned>(minor) << 4) |
                      static_cast<unsigned>(std::min(patch, 9));
    return {10, minor, patch, legacy};
}

const KVOperatingSystem::SystemVersion& KVOperatingSystem::current() {
    static const SystemVersion version = [] {
        const char* value = std::getenv("CORVALIS_SYSTEM_VERSION");
        return SystemVersion::probe(value ? std::optional<std::string_view>(value)
                                          : std::nullopt);
    }();
    return version;
}

}  // namespace corvalis

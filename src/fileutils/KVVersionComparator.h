#pragma once
// Ordering of version strings such as "10.9", "1.0.1b1" or "2.0rc1", shared by
// every place that decides whether one version is newer than another.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalis {

// A version split into its numbers and a trailing suffix: "2.1.3b4" is
// {2, 1, 3} with ("b", "4"); a plain release such as "2.1" carries ("f", "0").
struct KVVersionParts {
    std::vector<std::string> numbers;  // digit runs as text, so any length compares exactly
    std::string suffixTag;             // lowercased
    std::string suffixNumber;          // digits

    bool operator==(const KVVersionParts&) const = default;
};

class KVVersionComparator {
public:
    // The process-wide comparator.
    static KVVersionComparator& defaultComparator();

    KVVersionComparator(const KVVersionComparator&) = delete;
    KVVersionComparator& operator=(const KVVersionComparator&) = delete;

    // -1, 0 or 1 as `a` is older than, the same as or newer than `b`.
    int compareVersion(std::string_view a, std::string_view b) const;
    // The parts of `version`, or nothing when it is not a dotted numeric version.
    std::optional<KVVersionParts> decomposeVersion(std::string_view version) const;
    // Appends zero numbers to `parts` until it holds `maxCount` of them.
    void conformVersion(KVVersionParts& parts, std::size_t maxCount) const;

private:
    KVVersionComparator() = default;
};

}  // namespace corvalis

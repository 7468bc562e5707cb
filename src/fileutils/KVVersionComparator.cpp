#include "fileutils/KVVersionComparator.h"

#include <algorithm>
#include <utility>

namespace corvalis {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

char toLowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

int sign(int value) { return (value > 0) - (value < 0); }

// Integer order of two digit strings of any length, without converting them.
int compareNumbers(std::string_view a, std::string_view b) {
    auto significant = [](std::string_view digits) {
        std::size_t first = digits.find_first_not_of('0');
        return first == std::string_view::npos ? std::string_view{} : digits.substr(first);
    };
    a = significant(a);
    b = significant(b);
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    return sign(a.compare(b));
}

// Pre-release tags sort below a release; any tag we do not know counts as a release.
int suffixRank(std::string_view tag) {
    if (tag == "d" || tag == "dev") return 0;
    if (tag == "a" || tag == "alpha") return 1;
    if (tag == "b" || tag == "beta") return 2;
    return 3;
}

// The component's maximal digit and non-digit runs, lowercased; nothing when
// there are more than `maxRuns` of them.
std::optional<std::vector<std::string>> splitRuns(std::string_view component,
                                                  std::size_t maxRuns) {
    std::vector<std::string> runs;
    for (std::size_t i = 0; i < component.size(); ++i) {
        if (i == 0 || isDigit(component[i]) != isDigit(component[i - 1])) {
            if (runs.size() == maxRuns) return std::nullopt;
            runs.emplace_back();
        }
        runs.back().push_back(toLowerAscii(component[i]));
    }
    return runs;
}

}  // namespace

KVVersionComparator& KVVersionComparator::defaultComparator() {
    static KVVersionComparator comparator;
    return comparator;
}

std::optional<KVVersionParts> KVVersionComparator::decomposeVersion(
    std::string_view version) const {
    KVVersionParts parts;
    std::size_t start = 0;
    for (;;) {
        std::size_t dot = version.find('.', start);
        bool last = dot == std::string_view::npos;
        std::string_view component =
            version.substr(start, last ? std::string_view::npos : dot - start);
        if (component.empty() || !isDigit(component.front())) return std::nullopt;
        // Only the last component may carry a suffix: number, tag, tag number.
        auto runs = splitRuns(component, last ? 3 : 1);
        if (!runs) return std::nullopt;
        parts.numbers.push_back(std::move((*runs)[0]));
        if (last) {
            parts.suffixTag = runs->size() > 1 ? std::move((*runs)[1]) : "f";
            parts.suffixNumber = runs->size() > 2 ? std::move((*runs)[2]) : "0";
            return parts;
        }
        start = dot + 1;
    }
}

void KVVersionComparator::conformVersion(KVVersionParts& parts, std::size_t maxCount) const {
    while (parts.numbers.size() < maxCount) parts.numbers.emplace_back("0");
}

int KVVersionComparator::compareVersion(std::string_view a, std::string_view b) const {
    auto left = decomposeVersion(a);
    auto right = decomposeVersion(b);
    // Byte order of UTF-8 text is code point order, which is what a plain
    // text comparison gives for anything that is not a version.
    if (!left || !right) return sign(a.compare(b));

    std::size_t count = std::max(left->numbers.size(), right->numbers.size());
    conformVersion(*left, count);
    conformVersion(*right, count);
    for (std::size_t i = 0; i < count; ++i) {
        if (int order = compareNumbers(left->numbers[i], right->numbers[i])) return order;
    }
    int leftRank = suffixRank(left->suffixTag);
    int rightRank = suffixRank(right->suffixTag);
    if (leftRank != rightRank) return leftRank < rightRank ? -1 : 1;
    return compareNumbers(left->suffixNumber, right->suffixNumber);
}

}  // namespace corvalis

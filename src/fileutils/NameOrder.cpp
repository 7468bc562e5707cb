#include "fileutils/NameOrder.h"

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

namespace {

int sign(int value) { return (value > 0) - (value < 0); }

int compareCodePoints(std::string_view a, std::string_view b) { return sign(a.compare(b)); }

std::string_view textOf(const plist::Value& entry, std::string_view key) {
    const plist::Dictionary* dict = entry.dictionary();
    if (!dict) return {};
    const std::string* text = (*dict)[key].string();
    return text ? std::string_view(*text) : std::string_view();
}

UCollator* openFinderCollator(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale.c_str(), &status);
    // A warning (say, the root rules used for an unknown locale) is still a collator.
    if (U_FAILURE(status)) {
        if (collator) ucol_close(collator);
        status = U_ZERO_ERROR;
        collator = ucol_open("", &status);
        if (U_FAILURE(status)) {
            if (collator) ucol_close(collator);
            return nullptr;
        }
    }
    // Secondary strength: base letters and diacritics count, case and width do not.
    ucol_setAttribute(collator, UCOL_STRENGTH, UCOL_SECONDARY, &status);
    ucol_setAttribute(collator, UCOL_CASE_LEVEL, UCOL_OFF, &status);
    ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    ucol_setAttribute(collator, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    if (U_FAILURE(status)) {
        ucol_close(collator);
        return nullptr;
    }
    return collator;
}

}  // namespace

FinderCollator::FinderCollator(const std::string& locale) : collator_(openFinderCollator(locale)) {}

FinderCollator::~FinderCollator() {
    if (collator_) ucol_close(collator_);
}

int FinderCollator::compare(std::string_view a, std::string_view b) const {
    if (!collator_) return compareCodePoints(a, b);
    UErrorCode status = U_ZERO_ERROR;
    UCollationResult result = ucol_strcollUTF8(collator_, a.data(), static_cast<int32_t>(a.size()), b.data(),
                                               static_cast<int32_t>(b.size()), &status);
    if (U_FAILURE(status)) return compareCodePoints(a, b);
    return result == UCOL_LESS ? -1 : result == UCOL_GREATER ? 1 : 0;
}

std::string FinderCollator::sortKey(std::string_view text) const {
    if (!collator_) return std::string(text);
    // Broken UTF-8 becomes U+FFFD, as ucol_strcollUTF8 reads it.
    UErrorCode status = U_ZERO_ERROR;
    std::u16string wide(text.size() + 1, u'\0');
    int32_t length = 0;
    u_strFromUTF8WithSub(reinterpret_cast<UChar*>(wide.data()), static_cast<int32_t>(wide.size()), &length, text.data(),
                         static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
    if (U_FAILURE(status)) return std::string(text);
    const UChar* chars = reinterpret_cast<const UChar*>(wide.data());
    std::string key(static_cast<std::size_t>(length) * 4 + 16, '\0');
    auto fill = [&] {
        return ucol_getSortKey(collator_, chars, length, reinterpret_cast<uint8_t*>(key.data()),
                               static_cast<int32_t>(key.size()));
    };
    int32_t needed = fill();
    if (needed > static_cast<int32_t>(key.size())) {
        key.resize(static_cast<std::size_t>(needed));
        needed = fill();
    }
    key.resize(needed > 0 ? static_cast<std::size_t>(needed) - 1 : 0);  // without the closing NUL
    return key;
}

std::string collationLocaleFromPosix(std::string_view posixLocale) {
    // "language_TERRITORY.codeset@modifier": the codeset and modifier are not
    // part of the ICU ID (ICU would read "@euro" as a keyword).
    std::size_t end = posixLocale.find_first_of(".@");
    std::string_view base = posixLocale.substr(0, end);
    if (base == "C" || base == "POSIX") return "";
    return std::string(base);
}

const FinderCollator& FinderCollator::user() {
    static const FinderCollator collator([] {
        for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
            const char* value = std::getenv(variable);
            if (value && *value) return collationLocaleFromPosix(value);
        }
        return std::string();
    }());
    return collator;
}

int finderCompare(std::string_view a, std::string_view b) { return FinderCollator::user().compare(a, b); }

int SortByName(const plist::Value& a, const plist::Value& b) {
    return finderCompare(textOf(a, keys::Name), textOf(b, keys::Name));
}

int SortByNameAndPath(const plist::Value& a, const plist::Value& b) {
    int byName = SortByName(a, b);
    return byName != 0 ? byName : compareCodePoints(textOf(a, keys::Path), textOf(b, keys::Path));
}

int SortByPathAndUpdated(const plist::Value& a, const plist::Value& b) {
    int byPath = compareCodePoints(textOf(a, keys::Path), textOf(b, keys::Path));
    if (byPath != 0) return byPath;
    auto updated = [](const plist::Value& entry) {
        const plist::Dictionary* dict = entry.dictionary();
        return dict && dict->contains(keys::Updated);
    };
    return updated(a) == updated(b) ? 0 : updated(a) ? 1 : -1;
}

void sortUsingFunction(const plist::Array& array, EntryComparator comparator) {
    std::vector<plist::Value> values(array.begin(), array.end());
    std::stable_sort(values.begin(), values.end(),
                     [comparator](const plist::Value& a, const plist::Value& b) { return comparator(a, b) < 0; });
    plist::Array sorted;
    for (plist::Value& value : values) sorted.append(std::move(value));
    array.replaceContents(sorted);
}

std::string NewUniqueCommandId(const plist::Array& groups) {
    constexpr std::uint32_t kFirstId = 2000;
    std::vector<std::string> ids;
    for (const plist::Value& group : groups) {
        const plist::Dictionary* record = group.dictionary();
        const plist::Dictionary* shortcut = record ? (*record)[keys::KeyboardShortcut].dictionary() : nullptr;
        const std::string* id = shortcut ? (*shortcut)[keys::CommandID].string() : nullptr;
        if (id) ids.push_back(*id);
    }
    if (ids.empty()) return std::to_string(kFirstId);
    // Loading gives every group without an id one, asking again each time: keys made
    // once per id keep that from collating the same texts over and over.
    std::vector<std::pair<std::string, std::string>> keyed;
    keyed.reserve(ids.size());
    for (std::string& id : ids) keyed.emplace_back(FinderCollator::user().sortKey(id), std::move(id));
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = std::move(keyed[i].second);
    std::int64_t last = records::leadingIntValue(ids.front());
    if (last > static_cast<std::int64_t>(kFirstId)) return std::to_string(kFirstId);
    // Only the run that starts at the smallest id is followed; a gap after it
    // (or a duplicate) ends the run. Deliberately not "the first free id".
    for (std::size_t i = 1; i < ids.size() && records::leadingIntValue(ids[i]) == last + 1; ++i)
        last = records::leadingIntValue(ids[i]);
    // Ids are written as unsigned 32-bit numbers.
    return std::to_string(static_cast<std::uint32_t>(last + 1));
}

}  // namespace corvalis

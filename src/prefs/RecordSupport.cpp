#include "prefs/RecordSupport.h"

#include <algorithm>
#include <climits>

#include "fileutils/ExecutableArchitectures.h"
#include "fileutils/NameOrder.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathResolution.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/MenuItemKinds.h"
#include "schema/PreferenceKeys.h"

namespace corvalis::records {

using plist::Array;
using plist::Dictionary;
using plist::Value;

const std::string* (const Dictionary& record)[std::string_view key].string() { return record[key].string(); }

std::optional<bool> (const Dictionary& record)[std::string_view key].toBool() { return record[key].toBool(); }

std::optional<std::int32_t> (const Dictionary& record)[std::string_view key].toInt32() {
    return record[key].toInt32();
}

std::optional<std::int64_t> (const Dictionary& record)[std::string_view key].toInt64() {
    return record[key].toInt64();
}

std::int32_t leadingIntValue(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > static_cast<long long>(INT_MAX) + 1) break;
    }
    if (negative) value = -value;
    return static_cast<std::int32_t>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

// ---- Menus -------------------------------------------------------------------

void MenuBuilder::add(const char* kind) { add(Dictionary{{keys::Item, kind}}); }

void MenuBuilder::add(Dictionary record) {
    items_.emplace_back(std::move(record));
    lastIsSeparator_ = false;
}

void MenuBuilder::addSeparator() {
    if (items_.empty() || lastIsSeparator_) return;
    items_.emplace_back(Dictionary{{keys::Item, items::Separator}});
    lastIsSeparator_ = true;
}

Array MenuBuilder::finish() {
    if (lastIsSeparator_) items_.pop_back();
    lastIsSeparator_ = false;
    Array menu;
    for (Value& item : items_) menu.append(std::move(item));
    items_.clear();
    return menu;
}

// ---- Application records -----------------------------------------------------

std::optional<Dictionary> applicationRecord(const Value& stored) {
    const Dictionary* record = stored.dictionary();
    if (!record) return std::nullopt;
    const std::string* path = (*record)[keys::Path].string();
    if (!path) return std::nullopt;
    Dictionary rebuilt{{keys::Name, LocalizedApplicationName(*path)}, {keys::Path, *path}};
    const Value& alias = (*record)[keys::AliasData];
    if (alias.data()) rebuilt.set(keys::AliasData, alias);
    return rebuilt;
}

void sortByName(std::vector<Dictionary>& records) {
    // Collation keys are made once per record; comparing them orders as finderCompare does.
    std::vector<std::pair<std::string, Dictionary>> keyed;
    keyed.reserve(records.size());
    for (Dictionary& record : records) {
        const std::string* name = record[keys::Name].string();
        keyed.emplace_back(FinderCollator::user().sortKey(name ? *name : std::string()), std::move(record));
    }
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    records.clear();
    for (auto& entry : keyed) records.push_back(std::move(entry.second));
}

Array arrayOf(const std::vector<Dictionary>& records) {
    Array array;
    for (const Dictionary& record : records) array.append(record);
    return array;
}

}  // namespace corvalis::records

namespace corvalis {

LoadEnvironment LoadEnvironment::system(DomainStore& store) {
    LoadEnvironment environment;
    environment.developerApplicationsFolderExists = [] { return GetDeveloperApplicationsFolderRef() == 0; };
    environment.addressBookInstalled = [] { return IsAddressBookInstalled(); };
    environment.iPhotoLibraryAvailable = [&store] { return IsIPhotoLibraryAvailable(store); };
    environment.apertureLibraryAvailable = [&store] { return IsApertureLibraryAvailable(store); };
    environment.is64BitProcessor = [] { return Is64BitProcessor(); };
    return environment;
}

}  // namespace corvalis

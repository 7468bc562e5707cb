#include "plist/Value.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace corvalis::plist {

namespace {
const Value kAbsent;
// Dictionaries of the domain are mostly small records; an index pays off only for larger ones.
constexpr std::size_t kIndexThreshold = 12;
}  // namespace

double Integer::toDouble() const {
    return isSigned() ? static_cast<double>(toInt64()) : static_cast<double>(toUInt64());
}

// ---- Array -----------------------------------------------------------------

Array::Array() : items_(std::make_shared<std::vector<Value>>()) {}
Array::Array(std::initializer_list<Value> values) : items_(std::make_shared<std::vector<Value>>(values)) {}

std::size_t Array::size() const { return items_->size(); }
bool Array::empty() const { return items_->empty(); }

const Value& Array::operator[](std::size_t index) const {
    return index < items_->size() ? (*items_)[index] : kAbsent;
}

void Array::append(Value value) { items_->push_back(std::move(value)); }

void Array::reserve(std::size_t count) { items_->reserve(count); }

void Array::insert(std::size_t index, Value value) {
    index = std::min(index, items_->size());
    items_->insert(items_->begin() + static_cast<std::ptrdiff_t>(index), std::move(value));
}

void Array::set(std::size_t index, Value value) {
    if (index < items_->size()) (*items_)[index] = std::move(value);
}

void Array::removeAt(std::size_t index) {
    if (index < items_->size()) items_->erase(items_->begin() + static_cast<std::ptrdiff_t>(index));
}

void Array::clear() { items_->clear(); }

void Array::replaceContents(const Array& other) {
    if (!isSameObject(other)) *items_ = *other.items_;
}

std::vector<Value>::const_iterator Array::begin() const { return items_->cbegin(); }
std::vector<Value>::const_iterator Array::end() const { return items_->cend(); }

Array Array::deepCopy() const {
    Array copy;
    copy.items_->reserve(items_->size());
    for (const Value& item : *items_) copy.items_->push_back(item.deepCopy());
    return copy;
}

bool Array::operator==(const Array& other) const {
    return isSameObject(other) || *items_ == *other.items_;
}

// ---- Dictionary ------------------------------------------------------------

struct Dictionary::Storage {
    std::vector<Entry> entries;
    std::unordered_map<std::string_view, std::size_t> index;  // views into entries' keys

    std::ptrdiff_t position(std::string_view key) const {
        if (entries.size() < kIndexThreshold) {
            for (std::size_t i = 0; i < entries.size(); ++i)
                if (entries[i].first == key) return static_cast<std::ptrdiff_t>(i);
            return -1;
        }
        auto it = index.find(key);
        return it == index.end() ? -1 : static_cast<std::ptrdiff_t>(it->second);
    }

    void rebuildIndex() {
        index.clear();
        if (entries.size() < kIndexThreshold) return;
        index.reserve(entries.size());
        for (std::size_t i = 0; i < entries.size(); ++i) index.emplace(entries[i].first, i);
    }

    void append(std::string key, Value value) {
        // Growing the vector moves the strings; short keys live inline, so views must be rebuilt.
        bool reallocates = entries.size() == entries.capacity();
        entries.emplace_back(std::move(key), std::move(value));
        if (entries.size() < kIndexThreshold) return;
        if (reallocates || entries.size() == kIndexThreshold)
            rebuildIndex();
        else
            index.emplace(entries.back().first, entries.size() - 1);
    }
};

Dictionary::Dictionary() : storage_(std::make_shared<Storage>()) {}

Dictionary::Dictionary(std::initializer_list<Entry> entries) : Dictionary() {
    reserve(entries.size());
    for (const Entry& entry : entries) set(entry.first, entry.second);
}

void Dictionary::reserve(std::size_t count) {
    if (count <= storage_->entries.capacity()) return;
    storage_->entries.reserve(count);
    storage_->rebuildIndex();  // the index's views pointed into the old entries
}

std::size_t Dictionary::size() const { return storage_->entries.size(); }
bool Dictionary::empty() const { return storage_->entries.empty(); }
bool Dictionary::contains(std::string_view key) const { return storage_->position(key) >= 0; }

const Value* Dictionary::find(std::string_view key) const {
    auto pos = storage_->position(key);
    return pos < 0 ? nullptr : &storage_->entries[static_cast<std::size_t>(pos)].second;
}

const Value& Dictionary::operator[](std::string_view key) const {
    const Value* value = find(key);
    return value ? *value : kAbsent;
}

void Dictionary::set(std::string key, Value value) {
    auto pos = storage_->position(key);
    if (pos >= 0)
        storage_->entries[static_cast<std::size_t>(pos)].second = std::move(value);
    else
        storage_->append(std::move(key), std::move(value));
}

bool Dictionary::remove(std::string_view key) {
    auto pos = storage_->position(key);
    if (pos < 0) return false;
    storage_->entries.erase(storage_->entries.begin() + pos);
    storage_->rebuildIndex();
    return true;
}

void Dictionary::clear() {
    storage_->entries.clear();
    storage_->index.clear();
}

void Dictionary::replaceContents(const Dictionary& other) {
    if (isSameObject(other)) return;
    storage_->entries = other.storage_->entries;
    storage_->rebuildIndex();
}

std::vector<std::string> Dictionary::keys() const {
    std::vector<std::string> result;
    result.reserve(size());
    for (const Entry& entry : storage_->entries) result.push_back(entry.first);
    return result;
}

std::vector<Dictionary::Entry>::const_iterator Dictionary::begin() const { return storage_->entries.cbegin(); }
std::vector<Dictionary::Entry>::const_iterator Dictionary::end() const { return storage_->entries.cend(); }

Dictionary Dictionary::deepCopy() const {
    Dictionary copy;
    copy.storage_->entries.reserve(size());
    for (const Entry& entry : storage_->entries) copy.storage_->entries.emplace_back(entry.first, entry.second.deepCopy());
    copy.storage_->rebuildIndex();
    return copy;
}

bool Dictionary::operator==(const Dictionary& other) const {
    if (isSameObject(other)) return true;
    if (size() != other.size()) return false;
    for (const Entry& entry : storage_->entries) {
        const Value* theirs = other.find(entry.first);
        if (!theirs || !(*theirs == entry.second)) return false;
    }
    return true;
}

// ---- Value -----------------------------------------------------------------

bool Value::isNumber() const {
    Type t = type();
    return t == Type::Boolean || t == Type::Integer || t == Type::Real;
}

std::optional<bool> Value::boolean() const {
    if (const bool* b = std::get_if<bool>(&v_)) return *b;
    return std::nullopt;
}

const Value& Value::operator[](std::string_view key) const {
    const Dictionary* dict = dictionary();
    return dict ? (*dict)[key] : kAbsent;
}

const Value& Value::operator[](std::size_t index) const {
    const Array* items = array();
    return items ? (*items)[index] : kAbsent;
}

std::string Value::stringOr(std::string_view fallback) const {
    const std::string* text = string();
    return text ? *text : std::string(fallback);
}

std::optional<Date> Value::date() const {
    if (const Date* d = std::get_if<Date>(&v_)) return *d;
    return std::nullopt;
}

std::optional<double> Value::toDouble() const {
    if (const bool* b = std::get_if<bool>(&v_)) return *b ? 1.0 : 0.0;
    if (const Integer* i = integer()) return i->toDouble();
    if (const Real* r = real()) return r->value;
    return std::nullopt;
}

std::optional<bool> Value::toBool() const {
    if (const bool* b = std::get_if<bool>(&v_)) return *b;
    if (const Integer* i = integer()) return i->bits != 0;
    if (const Real* r = real()) return r->value != 0.0;
    return std::nullopt;
}

std::optional<std::int64_t> Value::toInt64() const {
    if (const bool* b = std::get_if<bool>(&v_)) return *b ? 1 : 0;
    if (const Integer* i = integer()) return i->toInt64();
    if (const Real* r = real()) {
        // Saturate instead of the undefined behaviour of an out-of-range cast.
        if (std::isnan(r->value)) return 0;
        if (r->value >= 9.2233720368547758e18) return std::numeric_limits<std::int64_t>::max();
        if (r->value <= -9.2233720368547758e18) return std::numeric_limits<std::int64_t>::min();
        return static_cast<std::int64_t>(r->value);
    }
    return std::nullopt;
}

std::optional<std::int32_t> Value::toInt32() const {
    auto wide = toInt64();
    if (!wide) return std::nullopt;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(*wide));  // truncates like a C cast
}

std::optional<float> Value::toFloat() const {
    auto d = toDouble();
    if (!d) return std::nullopt;
    return static_cast<float>(*d);
}

Value Value::deepCopy() const {
    if (const Array* a = std::get_if<Array>(&v_)) return a->deepCopy();
    if (const Dictionary* d = std::get_if<Dictionary>(&v_)) return d->deepCopy();
    return *this;
}

bool Value::operator==(const Value& other) const {
    Type mine = type(), theirs = other.type();
    bool mineNumeric = mine == Type::Integer || mine == Type::Real;
    bool theirsNumeric = theirs == Type::Integer || theirs == Type::Real;
    if (mineNumeric && theirsNumeric) {
        const Integer* a = integer();
        const Integer* b = other.integer();
        if (a && b) {
            // Compare exactly: a negative signed value never equals a huge unsigned one.
            bool aNegative = a->isSigned() && a->toInt64() < 0;
            bool bNegative = b->isSigned() && b->toInt64() < 0;
            return aNegative == bNegative && a->bits == b->bits;
        }
        return *toDouble() == *other.toDouble();
    }
    if (mine != theirs) return false;
    switch (mine) {
    case Type::Absent: return true;
    case Type::Boolean: return std::get<bool>(v_) == std::get<bool>(other.v_);
    case Type::String: return std::get<std::string>(v_) == std::get<std::string>(other.v_);
    case Type::Data: return std::get<Data>(v_) == std::get<Data>(other.v_);
    case Type::Date: return std::get<Date>(v_) == std::get<Date>(other.v_);
    case Type::Array: return std::get<Array>(v_) == std::get<Array>(other.v_);
    case Type::Dictionary: return std::get<Dictionary>(v_) == std::get<Dictionary>(other.v_);
    default: return false;
    }
}

const char* typeName(Type type) {
    switch (type) {
    case Type::Absent: return "absent";
    case Type::Boolean: return "boolean";
    case Type::Integer: return "integer";
    case Type::Real: return "real";
    case Type::String: return "string";
    case Type::Data: return "data";
    case Type::Date: return "date";
    case Type::Array: return "array";
    case Type::Dictionary: return "dictionary";
    }
    return "unknown";
}

}  // namespace corvalis::plist

#pragma once
// Property-list values with the semantics of Foundation's mutable containers:
// arrays and dictionaries are shared handles (copying a handle shares the
// contents; `deepCopy` makes an independent copy), scalars are plain values.
// Reading a value as the wrong type never fails loudly: typed accessors answer
// "absent" (an empty optional or a null pointer), and `operator[]` reads through
// nested containers (`prefs["Groups"][0]["Name"].string()`) without inserting.
// Accessors named after a type are strict; those named `to...` convert numbers.

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace corvalis::plist {

class Value;

enum class Type { Absent, Boolean, Integer, Real, String, Data, Date, Array, Dictionary };

// The C width an integer was made with; the domain's schema names them
// (short, unsigned char, unsigned int, ...). Values read from a file are Int64.
enum class IntWidth : std::uint8_t { Int8, Int16, Int32, Int64, UInt8, UInt16, UInt32, UInt64 };

struct Integer {
    std::uint64_t bits = 0;  // two's complement for the signed widths
    IntWidth width = IntWidth::Int64;

    bool isSigned() const { return width <= IntWidth::Int64; }
    std::int64_t toInt64() const { return static_cast<std::int64_t>(bits); }
    std::uint64_t toUInt64() const { return bits; }
    // The value as a double, respecting signedness.
    double toDouble() const;
};

struct Real {
    double value = 0;
    bool is32Bit = false;  // made as a C float
};

using Data = std::vector<std::uint8_t>;

// Seconds since 2001-01-01 00:00:00 UTC, as the property-list formats count them.
struct Date {
    double seconds = 0;
    auto operator<=>(const Date&) const = default;
};

// An ordered list of values; copies share the contents. Constness is the
// handle's, as with a pointer to a mutable array: a const handle cannot change
// the list, while a copy of the handle (or a nested container) can.
class Array {
public:
    Array();
    Array(std::initializer_list<Value> values);

    std::size_t size() const;
    bool empty() const;
    // Out-of-range indexes answer an absent value.
    const Value& operator[](std::size_t index) const;

    void append(Value value);
    void reserve(std::size_t count);  // room for `count` values without moving them again
    void insert(std::size_t index, Value value);  // index clamped to size()
    void set(std::size_t index, Value value);     // ignored when out of range
    void removeAt(std::size_t index);             // ignored when out of range
    void clear();
    // Replaces the contents with those of `other` (still one shared object).
    void replaceContents(const Array& other);

    std::vector<Value>::const_iterator begin() const;
    std::vector<Value>::const_iterator end() const;

    Array deepCopy() const;
    bool isSameObject(const Array& other) const { return items_ == other.items_; }
    bool operator==(const Array& other) const;

private:
    std::shared_ptr<std::vector<Value>> items_;
};

// String keys to values, kept in insertion order; copies share the contents.
class Dictionary {
public:
    using Entry = std::pair<std::string, Value>;

    Dictionary();
    Dictionary(std::initializer_list<Entry> entries);

    std::size_t size() const;
    bool empty() const;
    bool contains(std::string_view key) const;
    // A missing key answers an absent value.
    const Value& operator[](std::string_view key) const;
    const Value* find(std::string_view key) const;

    void set(std::string key, Value value);  // keeps the position of an existing key
    void reserve(std::size_t count);         // room for `count` entries without moving them again
    bool remove(std::string_view key);
    void clear();
    void replaceContents(const Dictionary& other);
    std::vector<std::string> keys() const;

    std::vector<Entry>::const_iterator begin() const;
    std::vector<Entry>::const_iterator end() const;

    Dictionary deepCopy() const;
    bool isSameObject(const Dictionary& other) const { return storage_ == other.storage_; }
    // Same keys with equal values, in any order.
    bool operator==(const Dictionary& other) const;

private:
    struct Storage;
    std::shared_ptr<Storage> storage_;
};

class Value {
public:
    Value() = default;  // absent
    Value(bool value) : v_(value) {}
    Value(Integer value) : v_(value) {}
    Value(Real value) : v_(value) {}
    Value(std::string value) : v_(std::move(value)) {}
    Value(std::string_view value) : v_(std::string(value)) {}
    Value(const char* value) : v_(std::string(value)) {}
    Value(Data value) : v_(std::move(value)) {}
    Value(Date value) : v_(value) {}
    Value(Array value) : v_(std::move(value)) {}
    Value(Dictionary value) : v_(std::move(value)) {}
    // Plain numbers must name their width (Value::int32(7)); this keeps an int
    // from silently becoming a boolean.
    template <class T>
        requires(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
    Value(T) = delete;

    static Value int8(std::int8_t v) { return Integer{static_cast<std::uint64_t>(v), IntWidth::Int8}; }
    static Value int16(std::int16_t v) { return Integer{static_cast<std::uint64_t>(v), IntWidth::Int16}; }
    static Value int32(std::int32_t v) { return Integer{static_cast<std::uint64_t>(v), IntWidth::Int32}; }
    static Value int64(std::int64_t v) { return Integer{static_cast<std::uint64_t>(v), IntWidth::Int64}; }
    static Value uint8(std::uint8_t v) { return Integer{v, IntWidth::UInt8}; }
    static Value uint16(std::uint16_t v) { return Integer{v, IntWidth::UInt16}; }
    static Value uint32(std::uint32_t v) { return Integer{v, IntWidth::UInt32}; }
    static Value uint64(std::uint64_t v) { return Integer{v, IntWidth::UInt64}; }
    static Value real32(float v) { return Real{v, true}; }
    static Value real64(double v) { return Real{v, false}; }

    Type type() const { return static_cast<Type>(v_.index()); }
    bool isAbsent() const { return type() == Type::Absent; }
    bool isNumber() const;  // boolean, integer or real, like NSNumber

    // Strict accessors: the value only when it has exactly that type.
    std::optional<bool> boolean() const;
    const Integer* integer() const { return std::get_if<Integer>(&v_); }
    const Real* real() const { return std::get_if<Real>(&v_); }
    const std::string* string() const { return std::get_if<std::string>(&v_); }
    const Data* data() const { return std::get_if<Data>(&v_); }
    std::optional<Date> date() const;
    // The container inside this value (a handle to copy, or to change in place).
    const Array* array() const { return std::get_if<Array>(&v_); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&v_); }

    // Conversions of any number (boolean, integer or real), as NSNumber's
    // boolValue, intValue, longLongValue, floatValue and doubleValue make them;
    // anything else is absent. Use `.value_or(fallback)` for a default.
    std::optional<bool> toBool() const;
    std::optional<std::int32_t> toInt32() const;
    std::optional<std::int64_t> toInt64() const;
    std::optional<float> toFloat() const;
    std::optional<double> toDouble() const;

    // The text, or `fallback` when this is not a string.
    std::string stringOr(std::string_view fallback) const;

    // The entry of a dictionary, or the item of an array; absent when this is
    // not that container or has no such entry. Never inserts.
    const Value& operator[](std::string_view key) const;
    const Value& operator[](std::size_t index) const;
    const Value& operator[](const char* key) const { return (*this)[std::string_view(key)]; }
    const Value& operator[](int index) const { return index < 0 ? (*this)[std::size_t(-1)] : (*this)[std::size_t(index)]; }

    // Scalars copy; containers are deep-copied.
    Value deepCopy() const;

    // Numbers compare by value whatever their width (a stored Int64 7 equals a
    // made Int32 7), booleans only with booleans; containers compare deeply.
    bool operator==(const Value& other) const;

private:
    std::variant<std::monostate, bool, Integer, Real, std::string, Data, Date, Array, Dictionary> v_;
};

// The container of a value as a handle of its own, or none; for values about to go away.
inline std::optional<Array> asArray(const Value& value) {
    if (const Array* array = value.array()) return *array;
    return std::nullopt;
}
inline std::optional<Dictionary> asDictionary(const Value& value) {
    if (const Dictionary* dict = value.dictionary()) return *dict;
    return std::nullopt;
}

// A short human-readable name of a type ("boolean", "integer", ...), for messages.
const char* typeName(Type type);

}  // namespace corvalis::plist

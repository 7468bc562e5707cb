#include "plist/PlistIO.h"

#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "plist/BinaryPlist.h"
#include "plist/InputLimits.h"

namespace corvalis::plist {

namespace {

struct NodeDeleter {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

struct MallocDeleter {
    void operator()(char* p) const { std::free(p); }
};
using MallocText = std::unique_ptr<char, MallocDeleter>;

constexpr char kBinaryMagic[] = "bplist00";
// libplist keeps dates as whole seconds plus microseconds in 32-bit fields.
constexpr double kMaxDateSeconds = 2147483647.0;

// Length of the valid UTF-8 sequence at `p`, or 0.
std::size_t utf8SequenceLength(const unsigned char* p, std::size_t left) {
    unsigned char c = p[0];
    std::size_t n = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
    if (n == 0 || n > left) return 0;
    for (std::size_t i = 1; i < n; ++i)
        if ((p[i] & 0xC0) != 0x80) return 0;
    std::uint32_t code = n == 1 ? c : c & (0x7F >> n);
    for (std::size_t i = 1; i < n; ++i) code = (code << 6) | (p[i] & 0x3F);
    static constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[n] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return n;
}

// Binary "ASCII" strings may carry any byte; such bytes are taken as Latin-1
// so that every string the program holds is valid UTF-8 and can be written back.
std::string validUtf8(const char* text, std::size_t length) {
    std::string result;
    result.reserve(length);
    auto* p = reinterpret_cast<const unsigned char*>(text);
    auto* end = p + length;
    const unsigned char* run = p;  // start of the valid text not yet copied
    while (p < end) {
        std::size_t n = *p < 0x80 ? 1 : utf8SequenceLength(p, static_cast<std::size_t>(end - p));
        if (n > 0) {
            p += n;
            continue;
        }
        result.append(reinterpret_cast<const char*>(run), static_cast<std::size_t>(p - run));
        result += static_cast<char>(0xC0 | (*p >> 6));
        result += static_cast<char>(0x80 | (*p & 0x3F));
        run = ++p;
    }
    result.append(reinterpret_cast<const char*>(run), static_cast<std::size_t>(p - run));
    return result;
}

std::string validUtf8(const char* text) { return validUtf8(text, std::strlen(text)); }

Value fromNode(plist_t node) {
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t b = 0;
        plist_get_bool_val(node, &b);
        return Value(b != 0);
    }
    case PLIST_UINT:
    case PLIST_UID: {
        std::uint64_t v = 0;
        if (plist_get_node_type(node) == PLIST_UINT)
            plist_get_uint_val(node, &v);
        else
            plist_get_uid_val(node, &v);
        // libplist hands back the two's complement bits; files hold signed values.
        return Value::int64(static_cast<std::int64_t>(v));
    }
    case PLIST_REAL: {
        double d = 0;
        plist_get_real_val(node, &d);
        return Value::real64(d);
    }
    case PLIST_STRING: {
        // Read in place: libplist's copying getter asserts on text holding a NUL byte.
        std::uint64_t length = 0;
        const char* s = plist_get_string_ptr(node, &length);
        return Value(s ? validUtf8(s, ::strnlen(s, static_cast<std::size_t>(length))) : std::string());
    }
    case PLIST_KEY: {
        char* s = nullptr;
        plist_get_string_val(node, &s);
        MallocText owned(s);
        return Value(validUtf8(s ? s : ""));
    }
    case PLIST_DATA: {
        std::uint64_t length = 0;
        const char* bytes = plist_get_data_ptr(node, &length);
        auto* begin = reinterpret_cast<const std::uint8_t*>(bytes);
        return Value(bytes ? Data(begin, begin + length) : Data());
    }
    case PLIST_DATE: {
        std::int32_t sec = 0, usec = 0;
        plist_get_date_val(node, &sec, &usec);
        // libplist splits negative times as (truncated seconds, |fraction|).
        double fraction = usec / 1e6;
        return Value(Date{sec < 0 ? sec - fraction : sec + fraction});
    }
    case PLIST_ARRAY: {
        // Walked with an iterator: libplist finds the n-th item by counting from the first.
        Array array;
        array.reserve(plist_array_get_size(node));
        plist_array_iter it = nullptr;
        plist_array_new_iter(node, &it);
        for (plist_t item = nullptr;;) {
            plist_array_next_item(node, it, &item);
            if (!item) break;
            array.append(fromNode(item));
        }
        std::free(it);
        return array;
    }
    case PLIST_DICT: {
        Dictionary dict;
        plist_dict_iter it = nullptr;
        plist_dict_new_iter(node, &it);
        std::uint32_t n = plist_dict_get_size(node);
        dict.reserve(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            char* key = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(node, it, &key, &item);
            MallocText ownedKey(key);
            if (key && item) dict.set(validUtf8(key), fromNode(item));
        }
        std::free(it);
        return dict;
    }
    default:
        return Value();
    }
}

struct NodeBuilder {
    std::string error;

    plist_t build(const Value& value, int depth) {
        if (depth > kMaxNestingDepth) return fail("nesting deeper than " + std::to_string(kMaxNestingDepth) + " levels");
        switch (value.type()) {
        case Type::Boolean: return plist_new_bool(*value.toBool() ? 1 : 0);
        case Type::Integer: {
            const Integer& i = *value.integer();
            if (!i.isSigned() && i.bits > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
                return fail("unsigned integer too large for a property list");
            return plist_new_uint(i.bits);
        }
        case Type::Real: return plist_new_real(value.real()->value);
        case Type::String: return plist_new_string(value.string()->c_str());
        case Type::Data: {
            const Data& d = *value.data();
            return plist_new_data(reinterpret_cast<const char*>(d.data()), d.size());
        }
        case Type::Date: {
            // libplist keeps dates as 32-bit seconds since 2001 (1933 to 2069). A date
            // outside is pinned to the nearest end rather than failing the whole save.
            double seconds = value.date()->seconds;
            if (std::isnan(seconds)) return fail("date is not a number");
            seconds = std::clamp(seconds, -kMaxDateSeconds - 1, kMaxDateSeconds);
            double whole = std::floor(seconds);
            auto usec = static_cast<std::int32_t>(std::lround((seconds - whole) * 1e6));
            if (usec >= 1000000) {
                whole += 1;
                usec -= 1000000;
            }
            return plist_new_date(static_cast<std::int32_t>(whole), usec);
        }
        case Type::Array: {
            plist_t node = plist_new_array();
            for (const Value& item : *value.array()) {
                if (item.isAbsent()) continue;
                plist_t child = build(item, depth + 1);
                if (!child) return discard(node);
                plist_array_append_item(node, child);
            }
            return node;
        }
        case Type::Dictionary: {
            plist_t node = plist_new_dict();
            for (const auto& [key, item] : *value.dictionary()) {
                if (item.isAbsent()) continue;
                plist_t child = build(item, depth + 1);
                if (!child) return discard(node);
                plist_dict_set_item(node, key.c_str(), child);
            }
            return node;
        }
        case Type::Absent: return fail("an absent value cannot be written");
        }
        return fail("unknown value type");
    }

    plist_t fail(std::string message) {
        if (error.empty()) error = std::move(message);
        return nullptr;
    }
    plist_t discard(plist_t node) {
        plist_free(node);
        return nullptr;
    }
};

}  // namespace

ParseResult parse(std::span<const std::uint8_t> bytes) {
    ParseResult result;
    if (bytes.empty()) {
        result.error = "empty input";
        return result;
    }
    if (bytes.size() > kMaxInputBytes) {
        result.error = "input larger than " + std::to_string(kMaxInputBytes / (1024 * 1024)) + " MB";
        return result;
    }
    bool binary = bytes.size() >= 8 && std::memcmp(bytes.data(), kBinaryMagic, 8) == 0;
    result.format = binary ? Format::Binary : Format::Xml;
    if (binary) {
        result.error = detail::readBinary(bytes, kMaxNestingDepth, result.value);
        if (!result.ok()) result.value = Value();
        return result;
    }
    std::string problem = detail::checkXmlNesting(bytes, kMaxNestingDepth);
    if (!problem.empty()) {
        result.error = problem;
        return result;
    }
    plist_t raw = nullptr;
    plist_from_xml(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()), &raw);
    Node node(raw);
    if (!node) {
        result.error = "not a valid XML property list";
        return result;
    }
    result.value = fromNode(node.get());
    return result;
}

ParseResult parse(std::string_view text) {
    return parse(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

WriteResult serialize(const Value& value, Format format) {
    WriteResult result;
    if (format == Format::Binary) {
        result.bytes = detail::writeBinary(value, kMaxNestingDepth, result.error);
        return result;
    }
    NodeBuilder builder;
    Node node(builder.build(value, 1));
    if (!node) {
        result.error = builder.error;
        return result;
    }
    char* out = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node.get(), &out, &length);
    MallocText owned(out);
    if (!out) {
        result.error = "property list could not be written";
        return result;
    }
    result.bytes.assign(out, out + length);
    return result;
}

std::string toXml(const Value& value) {
    WriteResult written = serialize(value, Format::Xml);
    return written.ok() ? std::string(written.bytes.begin(), written.bytes.end()) : std::string();
}

}  // namespace corvalis::plist

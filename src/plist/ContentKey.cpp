#include "plist/ContentKey.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace corvalis::plist {

namespace {

// Grows like any string, without zero-filling the room it reserves: the key of
// a large domain is megabytes, written in hundreds of thousands of tiny pieces.
struct KeyWriter {
    std::string out;
    bool put(const char* bytes, std::size_t length) {
        if (length != 0) out.append(bytes, length);  // empty data or text may have no buffer at all
        return true;
    }
};

struct KeyMatcher {
    std::string_view key;
    std::size_t at = 0;
    bool put(const char* bytes, std::size_t length) {
        if (length == 0) return true;
        if (key.size() - at < length || std::memcmp(key.data() + at, bytes, length) != 0) return false;
        at += length;
        return true;
    }
};

// A type letter with the fixed-size contents that follow it.
template <typename Sink, typename T>
bool putTagged(Sink& sink, char tag, const T& contents) {
    char bytes[1 + sizeof(T)];
    bytes[0] = tag;
    std::memcpy(bytes + 1, &contents, sizeof(T));
    return sink.put(bytes, sizeof bytes);
}

template <typename Sink>
bool putText(Sink& sink, char tag, const void* text, std::size_t length) {
    return putTagged(sink, tag, static_cast<std::uint64_t>(length)) && sink.put(static_cast<const char*>(text), length);
}

// Each value starts with its type letter; texts carry their length and
// containers end with 'e', so no two different trees flatten to the same bytes.
template <typename Sink>
bool put(Sink& sink, const Value& value) {
    switch (value.type()) {
    case Type::Absent: return true;  // never written, so not part of the contents
    case Type::Boolean: return sink.put(*value.boolean() ? "T" : "F", 1);
    // Files keep an integer's bits, not the C width it was made with.
    case Type::Integer: return putTagged(sink, value.integer()->isSigned() ? 'i' : 'u', value.integer()->bits);
    case Type::Real: return putTagged(sink, 'r', value.real()->value);
    case Type::Date: return putTagged(sink, 'd', value.date()->seconds);
    case Type::String: return putText(sink, 's', value.string()->data(), value.string()->size());
    case Type::Data: return putText(sink, 'b', value.data()->data(), value.data()->size());
    case Type::Array:
        if (!sink.put("a", 1)) return false;
        for (const Value& item : *value.array())
            if (!put(sink, item)) return false;
        return sink.put("e", 1);
    case Type::Dictionary: {
        // Entries in key order: a domain whose keys only moved holds the same settings.
        const Dictionary& dict = *value.dictionary();
        constexpr std::size_t kInline = 16;
        const Dictionary::Entry* inlineEntries[kInline];
        std::vector<const Dictionary::Entry*> heapEntries;
        const Dictionary::Entry** entries = inlineEntries;
        if (dict.size() > kInline) {
            heapEntries.resize(dict.size());
            entries = heapEntries.data();
        }
        std::size_t count = 0;
        for (const Dictionary::Entry& entry : dict)
            if (!entry.second.isAbsent()) entries[count++] = &entry;
        std::sort(entries, entries + count, [](const auto* a, const auto* b) { return a->first < b->first; });
        if (!sink.put("D", 1)) return false;
        for (std::size_t i = 0; i < count; ++i) {
            const auto& [key, item] = *entries[i];
            if (!putText(sink, 'k', key.data(), key.size()) || !put(sink, item)) return false;
        }
        return sink.put("e", 1);
    }
    }
    return false;
}

}  // namespace

std::string contentKey(const Value& value) {
    KeyWriter writer;
    writer.out.reserve(4096);
    put(writer, value);
    return std::move(writer.out);
}

bool hasContentKey(const Value& value, std::string_view key) {
    KeyMatcher matcher{key};
    return put(matcher, value) && matcher.at == key.size();
}

}  // namespace corvalis::plist

#include "plist/BinaryPlist.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_map>

#include "plist/Utf8.h"

namespace corvalis::plist::detail {

namespace {

constexpr std::size_t kHeaderSize = 8;  // "bplist00"
constexpr std::size_t kTrailerSize = 32;

std::uint64_t readBigEndian(const std::uint8_t* p, unsigned width) {
    std::uint64_t value = 0;
    for (unsigned i = 0; i < width; ++i) value = (value << 8) | p[i];
    return value;
}

double readDouble(const std::uint8_t* p) { return std::bit_cast<double>(readBigEndian(p, 8)); }

class Reader {
public:
    Reader(std::span<const std::uint8_t> bytes, int maxDepth) : bytes_(bytes), maxDepth_(maxDepth) {}

    std::string read(Value& out) {
        if (bytes_.size() < kHeaderSize + kTrailerSize) return "truncated binary property list";
        const std::uint8_t* trailer = bytes_.data() + bytes_.size() - kTrailerSize;
        offsetSize_ = trailer[6];
        refSize_ = trailer[7];
        std::uint64_t count = readBigEndian(trailer + 8, 8);
        std::uint64_t top = readBigEndian(trailer + 16, 8);
        std::uint64_t tableOffset = readBigEndian(trailer + 24, 8);
        std::size_t tableLimit = bytes_.size() - kTrailerSize;
        if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8) return "bad binary property list trailer";
        if (count == 0 || count > bytes_.size() || top >= count) return "bad object count in binary property list";
        if (tableOffset < kHeaderSize || tableOffset > tableLimit || count * offsetSize_ > tableLimit - tableOffset)
            return "offset table out of range";
        tableOffset_ = tableOffset;
        objectLimit_ = tableOffset;
        count_ = count;
        state_.assign(count, 0);
        // Objects referenced many times are read each time: bound the total so that a
        // small file of shared references cannot expand without end.
        budget_ = 16 * bytes_.size() + 1024;
        out = object(top, 1);
        return error_;
    }

private:
    Value fail(std::string message) {
        if (error_.empty()) error_ = std::move(message);
        return Value();
    }

    Value object(std::uint64_t index, int level) {
        if (level > maxDepth_) return fail("nesting deeper than " + std::to_string(maxDepth_) + " levels");
        if (budget_-- == 0) return fail("too many shared references in binary property list");
        if (state_[index] == kInProgress) return fail("circular reference in binary property list");
        std::uint64_t offset = readBigEndian(bytes_.data() + tableOffset_ + index * offsetSize_, offsetSize_);
        if (offset < kHeaderSize || offset >= objectLimit_) return fail("object offset out of range");
        std::uint8_t marker = bytes_[offset];
        unsigned kind = marker >> 4, low = marker & 0x0F;
        std::uint64_t at = offset + 1;
        std::uint64_t length = low;
        bool sized = kind == 0x4 || kind == 0x5 || kind == 0x6 || kind == 0xA || kind == 0xB || kind == 0xC || kind == 0xD;
        if (sized && low == 0x0F) {
            if (at >= objectLimit_) return fail("truncated object size");
            std::uint8_t intMarker = bytes_[at];
            unsigned width = 1u << (intMarker & 0x0F);
            if ((intMarker >> 4) != 0x1 || width > 8 || at + 1 + width > objectLimit_) return fail("bad object size");
            length = readBigEndian(bytes_.data() + at + 1, width);
            at += 1 + width;
        }
        if (length > objectLimit_) return fail("object larger than the file");
        auto has = [&](std::uint64_t n) { return n <= objectLimit_ - at; };
        const std::uint8_t* p = bytes_.data() + at;
        switch (kind) {
        case 0x0:
            if (low == 0x8 || low == 0x9) return Value(low == 0x9);
            return fail("unknown object type in binary property list");
        case 0x1: {
            if (low > 4 || !has(std::uint64_t(1) << low)) return fail("bad integer in binary property list");
            if (low < 3) return Value::int64(static_cast<std::int64_t>(readBigEndian(p, 1u << low)));
            if (low == 3) return Value::int64(static_cast<std::int64_t>(readBigEndian(p, 8)));
            // 128 bits: the high half carries the sign of what fits in 64 bits.
            std::uint64_t high = readBigEndian(p, 8), bits = readBigEndian(p + 8, 8);
            if (high == 0) return bits > std::uint64_t(std::numeric_limits<std::int64_t>::max()) ? Value::uint64(bits)
                                                                                              : Value::int64(static_cast<std::int64_t>(bits));
            if (high == ~std::uint64_t(0) && (bits >> 63)) return Value::int64(static_cast<std::int64_t>(bits));
            return fail("integer outside the 64-bit range");
        }
        case 0x2:
            if (low == 2 && has(4)) return Value::real64(std::bit_cast<float>(static_cast<std::uint32_t>(readBigEndian(p, 4))));
            if (low == 3 && has(8)) return Value::real64(readDouble(p));
            return fail("bad real number in binary property list");
        case 0x3:
            if (low == 3 && has(8)) return Value(Date{readDouble(p)});
            return fail("bad date in binary property list");
        case 0x4:
            if (!has(length)) return fail("object extends past the object table");
            return Value(Data(p, p + length));
        case 0x5: {
            if (!has(length)) return fail("object extends past the object table");
            for (std::uint64_t i = 0; i < length; ++i) {
                if (p[i] == 0) return fail("text with a NUL character");
                if (p[i] >= 0x80) return fail("text that is not valid ASCII in binary property list");
            }
            return Value(std::string(reinterpret_cast<const char*>(p), length));
        }
        case 0x6: return utf16Text(p, length);
        case 0x8: {
            if (low > 7 || !has(low + 1u)) return fail("bad identifier in binary property list");
            return Value::int64(static_cast<std::int64_t>(readBigEndian(p, low + 1u)));
        }
        case 0xA: case 0xB: case 0xC: case 0xD: break;
        default: return fail("unknown object type in binary property list");
        }
        bool dictionary = kind == 0xD;
        if (!has(length * (dictionary ? 2 : 1) * refSize_)) return fail("object extends past the object table");
        state_[index] = kInProgress;
        Value result;
        if (dictionary) {
            Dictionary dict;
            dict.reserve(length);
            for (std::uint64_t i = 0; i < length && error_.empty(); ++i) {
                Value key = child(p, i, level);
                if (!error_.empty()) break;
                if (!key.string()) {
                    fail("dictionary key that is not text");
                    break;
                }
                Value item = child(p, length + i, level);
                if (error_.empty()) dict.set(std::move(*key.string()), std::move(item));
            }
            result = std::move(dict);
        } else {
            Array array;
            array.reserve(length);
            for (std::uint64_t i = 0; i < length && error_.empty(); ++i) array.append(child(p, i, level));
            result = std::move(array);
        }
        state_[index] = 0;
        return error_.empty() ? result : Value();
    }

    Value child(const std::uint8_t* refs, std::uint64_t i, int level) {
        std::uint64_t index = readBigEndian(refs + i * refSize_, refSize_);
        if (index >= count_) return fail("object reference out of range");
        return object(index, level + 1);
    }

    Value utf16Text(const std::uint8_t* p, std::uint64_t units) {
        if (units > (objectLimit_ - (p - bytes_.data())) / 2) return fail("object extends past the object table");
        std::string text;
        text.reserve(units);
        for (std::uint64_t i = 0; i < units; ++i) {
            std::uint32_t code = readBigEndian(p + 2 * i, 2);
            if (code == 0) return fail("text with a NUL character");
            if (code >= 0xD800 && code <= 0xDBFF && i + 1 < units) {
                std::uint32_t next = readBigEndian(p + 2 * i + 2, 2);
                if (next >= 0xDC00 && next <= 0xDFFF) {
                    appendUtf8(text, 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00));
                    ++i;
                    continue;
                }
            }
            if (code >= 0xD800 && code <= 0xDFFF) return fail("text that is not valid UTF-16 in binary property list");
            appendUtf8(text, code);
        }
        return Value(std::move(text));
    }

    static constexpr std::uint8_t kInProgress = 1;
    std::span<const std::uint8_t> bytes_;
    int maxDepth_;
    unsigned offsetSize_ = 0, refSize_ = 0;
    std::uint64_t tableOffset_ = 0, objectLimit_ = 0, count_ = 0, budget_ = 0;
    std::vector<std::uint8_t> state_;
    std::string error_;
};

// Objects are laid out first (ids, references), then written once the width of a
// reference is known. Equal texts (dictionary keys above all) are written once.
class Writer {
public:
    explicit Writer(int maxDepth) : maxDepth_(maxDepth) {}

    std::vector<std::uint8_t> write(const Value& top, std::string& error) {
        if (top.isAbsent()) {
            error = "an absent value cannot be written";
            return {};
        }
        layout(top, 1);
        if (!error_.empty()) {
            error = error_;
            return {};
        }
        std::uint64_t count = objects_.size();
        refSize_ = count <= 0xFF ? 1 : count <= 0xFFFF ? 2 : count <= 0xFFFFFFFF ? 4 : 8;
        out_.reserve(count * 8 + refs_.size() * refSize_);
        out_.insert(out_.end(), {'b', 'p', 'l', 'i', 's', 't', '0', '0'});
        std::vector<std::uint64_t> offsets;
        offsets.reserve(count);
        for (const Object& object : objects_) {
            offsets.push_back(out_.size());
            emit(object);
        }
        std::uint64_t tableOffset = out_.size();
        unsigned offsetSize = widthOf(tableOffset);
        for (std::uint64_t offset : offsets) putBigEndian(offset, offsetSize);
        out_.insert(out_.end(), 6, 0);
        out_.push_back(static_cast<std::uint8_t>(offsetSize));
        out_.push_back(static_cast<std::uint8_t>(refSize_));
        putBigEndian(count, 8);
        putBigEndian(0, 8);
        putBigEndian(tableOffset, 8);
        return std::move(out_);
    }

private:
    struct Object {
        const Value* value = nullptr;        // none for a dictionary key
        const std::string* key = nullptr;
        std::size_t firstRef = 0;            // containers: their references in refs_
    };

    static unsigned widthOf(std::uint64_t n) { return n <= 0xFF ? 1 : n <= 0xFFFF ? 2 : n <= 0xFFFFFFFF ? 4 : 8; }

    std::uint64_t text(const std::string* s, const Value* value) {
        auto [it, added] = texts_.try_emplace(std::string_view(*s), objects_.size());
        if (added) objects_.push_back({value, s, 0});
        return it->second;
    }

    std::uint64_t layout(const Value& value, int depth) {
        if (depth > maxDepth_) {
            if (error_.empty()) error_ = "nesting deeper than " + std::to_string(maxDepth_) + " levels";
            return 0;
        }
        if (const std::string* s = value.string()) return text(s, &value);
        std::uint64_t id = objects_.size();
        objects_.push_back({&value, nullptr, refs_.size()});
        if (const Array* array = value.array()) {
            std::size_t slot = refs_.size(), n = 0;
            for (const Value& item : *array) n += !item.isAbsent();
            refs_.resize(slot + n);
            for (const Value& item : *array)
                if (!item.isAbsent()) refs_[slot++] = layout(item, depth + 1);
        } else if (const Dictionary* dict = value.dictionary()) {
            std::size_t n = 0;
            for (const auto& entry : *dict) n += !entry.second.isAbsent();
            std::size_t keySlot = refs_.size(), valueSlot = keySlot + n;
            refs_.resize(keySlot + 2 * n);
            for (const auto& [key, item] : *dict) {
                if (item.isAbsent()) continue;
                refs_[keySlot++] = text(&key, nullptr);
                refs_[valueSlot++] = layout(item, depth + 1);
            }
        } else if (std::optional<Date> date = value.date(); date && std::isnan(date->seconds)) {
            if (error_.empty()) error_ = "date is not a number";
        }
        return id;
    }

    void putBigEndian(std::uint64_t value, unsigned width) {
        for (unsigned i = width; i-- > 0;) out_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }

    void marker(unsigned kind, std::uint64_t length) {
        if (length < 0x0F) {
            out_.push_back(static_cast<std::uint8_t>(kind << 4 | length));
            return;
        }
        out_.push_back(static_cast<std::uint8_t>(kind << 4 | 0x0F));
        unsigned width = widthOf(length);
        out_.push_back(static_cast<std::uint8_t>(0x10 | std::countr_zero(width)));
        putBigEndian(length, width);
    }

    void emitText(const std::string& s) {
        bool ascii = true;
        for (char c : s) ascii &= static_cast<unsigned char>(c) < 0x80;
        if (ascii) {
            marker(0x5, s.size());
            out_.insert(out_.end(), s.begin(), s.end());
            return;
        }
        // Bytes that are not UTF-8 (a file name, say) are kept as Latin-1 rather than failing the save.
        units_.clear();
        auto* p = reinterpret_cast<const unsigned char*>(s.data());
        for (std::size_t i = 0; i < s.size();) {
            std::size_t n = utf8SequenceLength(p + i, s.size() - i);
            std::uint32_t code = p[i];
            if (n == 0) {
                n = 1;
            } else if (n > 1) {
                code = p[i] & (0x7F >> n);
                for (std::size_t k = 1; k < n; ++k) code = (code << 6) | (p[i + k] & 0x3F);
            }
            i += n;
            if (code >= 0x10000) {
                code -= 0x10000;
                units_.push_back(static_cast<char16_t>(0xD800 + (code >> 10)));
                units_.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
            } else {
                units_.push_back(static_cast<char16_t>(code));
            }
        }
        marker(0x6, units_.size());
        for (char16_t unit : units_) putBigEndian(unit, 2);
    }

    void emit(const Object& object) {
        if (object.key) return emitText(*object.key);
        const Value& value = *object.value;
        switch (value.type()) {
        case Type::Boolean: out_.push_back(*value.boolean() ? 0x09 : 0x08); return;
        case Type::Integer: {
            const Integer& i = *value.integer();
            if (i.isSigned() && i.toInt64() < 0) {
                out_.push_back(0x13);
                putBigEndian(i.bits, 8);
            } else if (i.bits > std::uint64_t(std::numeric_limits<std::int64_t>::max())) {
                out_.push_back(0x14);  // 128 bits, high half zero: unsigned beyond the signed range
                putBigEndian(0, 8);
                putBigEndian(i.bits, 8);
            } else {
                unsigned width = i.bits <= 0xFF ? 1 : i.bits <= 0xFFFF ? 2 : i.bits <= 0xFFFFFFFF ? 4 : 8;
                out_.push_back(static_cast<std::uint8_t>(0x10 | std::countr_zero(width)));
                putBigEndian(i.bits, width);
            }
            return;
        }
        case Type::Real:
            out_.push_back(0x23);
            putBigEndian(std::bit_cast<std::uint64_t>(value.real()->value), 8);
            return;
        case Type::Date:
            out_.push_back(0x33);
            putBigEndian(std::bit_cast<std::uint64_t>(value.date()->seconds), 8);
            return;
        case Type::Data: {
            const Data& d = *value.data();
            marker(0x4, d.size());
            out_.insert(out_.end(), d.begin(), d.end());
            return;
        }
        case Type::String: return emitText(*value.string());
        case Type::Array: {
            std::size_t n = 0;
            for (const Value& item : *value.array()) n += !item.isAbsent();
            marker(0xA, n);
            for (std::size_t i = 0; i < n; ++i) putBigEndian(refs_[object.firstRef + i], refSize_);
            return;
        }
        case Type::Dictionary: {
            std::size_t n = 0;
            for (const auto& entry : *value.dictionary()) n += !entry.second.isAbsent();
            marker(0xD, n);
            for (std::size_t i = 0; i < 2 * n; ++i) putBigEndian(refs_[object.firstRef + i], refSize_);
            return;
        }
        case Type::Absent: return;
        }
    }

    int maxDepth_;
    std::vector<Object> objects_;
    std::vector<std::uint64_t> refs_;
    std::unordered_map<std::string_view, std::uint64_t> texts_;
    std::vector<std::uint8_t> out_;
    std::u16string units_;
    unsigned refSize_ = 1;
    std::string error_;
};

}  // namespace

std::string readBinary(std::span<const std::uint8_t> bytes, int maxDepth, Value& out) {
    return Reader(bytes, maxDepth).read(out);
}

std::vector<std::uint8_t> writeBinary(const Value& value, int maxDepth, std::string& error) {
    return Writer(maxDepth).write(value, error);
}

}  // namespace corvalis::plist::detail

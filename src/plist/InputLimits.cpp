#include "plist/InputLimits.h"

#include <cstring>
#include <vector>

namespace corvalis::plist::detail {

namespace {

bool startsWith(std::span<const std::uint8_t> bytes, std::size_t at, const char* text) {
    std::size_t n = std::strlen(text);
    return at + n <= bytes.size() && std::memcmp(bytes.data() + at, text, n) == 0;
}

std::uint64_t readBigEndian(const std::uint8_t* p, unsigned width) {
    std::uint64_t value = 0;
    for (unsigned i = 0; i < width; ++i) value = (value << 8) | p[i];
    return value;
}

constexpr std::size_t kHeaderSize = 8;  // "bplist00"
constexpr std::size_t kTrailerSize = 32;

class BinaryGraph {
public:
    explicit BinaryGraph(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::string check(int maxDepth) {
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
        depth_.assign(count, 0);
        int depth = depthOf(top, 1, maxDepth);
        if (depth < 0) return error_;
        return {};
    }

private:
    // Depth of the object graph below `index`, or -1 with error_ set.
    int depthOf(std::uint64_t index, int level, int maxDepth) {
        if (level > maxDepth) return fail("nesting deeper than " + std::to_string(maxDepth) + " levels");
        if (depth_[index] == kInProgress) return fail("circular reference in binary property list");
        if (depth_[index] > 0) return depth_[index];

        std::uint64_t offset = readBigEndian(bytes_.data() + tableOffset_ + index * offsetSize_, offsetSize_);
        if (offset < kHeaderSize || offset >= objectLimit_) return fail("object offset out of range");
        std::uint8_t marker = bytes_[offset];
        unsigned kind = marker >> 4;
        std::uint64_t length = marker & 0x0F;
        std::uint64_t contentAt = offset + 1;
        bool sized = kind == 0x4 || kind == 0x5 || kind == 0x6 || kind == 0xA || kind == 0xB || kind == 0xC || kind == 0xD;
        if (sized && length == 0x0F) {
            if (contentAt >= objectLimit_) return fail("truncated object size");
            std::uint8_t intMarker = bytes_[contentAt];
            unsigned width = 1u << (intMarker & 0x0F);
            if ((intMarker >> 4) != 0x1 || width > 8 || contentAt + 1 + width > objectLimit_) return fail("bad object size");
            length = readBigEndian(bytes_.data() + contentAt + 1, width);
            contentAt += 1 + width;
        }
        if (length > objectLimit_) return fail("object larger than the file");
        std::uint64_t contentBytes = 0;
        switch (kind) {
        case 0x0: contentBytes = 0; break;
        case 0x1: case 0x2: contentBytes = std::uint64_t(1) << (marker & 0x0F); break;
        case 0x3: contentBytes = 8; break;
        case 0x4: case 0x5: contentBytes = length; break;
        case 0x6: contentBytes = length * 2; break;
        case 0x8: contentBytes = (marker & 0x0F) + 1u; break;
        case 0xA: case 0xB: case 0xC: contentBytes = length * refSize_; break;
        case 0xD: contentBytes = length * 2 * refSize_; break;
        default: return fail("unknown object type in binary property list");
        }
        if ((kind == 0x1 || kind == 0x2) && (marker & 0x0F) > 4) return fail("bad number size");
        if (contentBytes > objectLimit_ - contentAt) return fail("object extends past the object table");
        // libplist's accessors assume C strings: text with a NUL in it must never reach them.
        if (kind == 0x5 && std::memchr(bytes_.data() + contentAt, 0, length)) return fail("text with a NUL character");
        if (kind == 0x6)
            for (std::uint64_t i = 0; i < length; ++i)
                if (bytes_[contentAt + 2 * i] == 0 && bytes_[contentAt + 2 * i + 1] == 0) return fail("text with a NUL character");
        bool container = kind == 0xA || kind == 0xB || kind == 0xC || kind == 0xD;
        if (!container) {
            depth_[index] = 1;
            return 1;
        }
        std::uint64_t refsAt = contentAt;
        std::uint64_t refs = kind == 0xD ? length * 2 : length;
        depth_[index] = kInProgress;
        int deepest = 0;
        for (std::uint64_t i = 0; i < refs; ++i) {
            std::uint64_t child = readBigEndian(bytes_.data() + refsAt + i * refSize_, refSize_);
            if (child >= count_) return fail("object reference out of range");
            if (kind == 0xD && i < length && !isText(child)) return fail("dictionary key that is not text");
            int childDepth = depthOf(child, level + 1, maxDepth);
            if (childDepth < 0) return -1;
            if (childDepth > deepest) deepest = childDepth;
        }
        depth_[index] = deepest + 1;
        return depth_[index];
    }

    bool isText(std::uint64_t index) const {
        std::uint64_t offset = readBigEndian(bytes_.data() + tableOffset_ + index * offsetSize_, offsetSize_);
        if (offset < kHeaderSize || offset >= objectLimit_) return false;
        unsigned kind = bytes_[offset] >> 4;
        return kind == 0x5 || kind == 0x6;
    }

    int fail(std::string message) {
        error_ = std::move(message);
        return -1;
    }

    static constexpr int kInProgress = -1;
    std::span<const std::uint8_t> bytes_;
    unsigned offsetSize_ = 0, refSize_ = 0;
    std::uint64_t tableOffset_ = 0, objectLimit_ = 0, count_ = 0;
    std::vector<int> depth_;
    std::string error_;
};

}  // namespace

std::string checkXmlNesting(std::span<const std::uint8_t> bytes, int maxDepth) {
    int depth = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '<') continue;
        if (startsWith(bytes, i, "<!--")) {
            // Container tags inside comments do not nest anything.
            std::size_t end = i + 4;
            while (end + 2 < bytes.size() && !(bytes[end] == '-' && bytes[end + 1] == '-' && bytes[end + 2] == '>')) ++end;
            i = end;
            continue;
        }
        bool opens = startsWith(bytes, i, "<array") || startsWith(bytes, i, "<dict");
        bool closes = startsWith(bytes, i, "</array") || startsWith(bytes, i, "</dict");
        if (opens) {
            std::size_t close = i;
            while (close < bytes.size() && bytes[close] != '>') ++close;
            bool selfClosing = close < bytes.size() && close > i && bytes[close - 1] == '/';
            if (!selfClosing && ++depth > maxDepth) return "nesting deeper than " + std::to_string(maxDepth) + " levels";
        } else if (closes && depth > 0) {
            --depth;
        }
    }
    return {};
}

std::string checkBinaryStructure(std::span<const std::uint8_t> bytes, int maxDepth) {
    return BinaryGraph(bytes).check(maxDepth);
}

}  // namespace corvalis::plist::detail

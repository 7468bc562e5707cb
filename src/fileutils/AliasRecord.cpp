#include "fileutils/AliasRecord.h"

#include <cstring>

#include "fileutils/PathLimits.h"

namespace corvalis {

namespace {

constexpr std::uint8_t kMagic[4] = {'C', 'V', 'A', 'L'};

// Extended-data tags of classic alias records.
constexpr std::int16_t kClassicTagPosixPath = 18;
constexpr std::int16_t kClassicTagPosixMountPoint = 19;
constexpr std::int16_t kClassicTagEnd = -1;
// Fixed parts before the extended data: 4-byte user type, size, version, then
// 142 bytes of the version 2 header or 50 bytes of the version 3 header.
constexpr std::size_t kClassicV2ExtendedDataOffset = 150;
constexpr std::size_t kClassicV3ExtendedDataOffset = 58;

class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool atEnd() const { return offset_ == bytes_.size(); }
    std::size_t offset() const { return offset_; }
    bool seek(std::size_t offset) {
        if (offset > bytes_.size()) return false;
        offset_ = offset;
        return true;
    }
    std::optional<std::uint64_t> unsignedBigEndian(std::size_t width) {
        if (bytes_.size() - offset_ < width) return std::nullopt;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i) value = (value << 8) | bytes_[offset_ + i];
        offset_ += width;
        return value;
    }
    std::optional<std::string> text(std::size_t length) {
        if (bytes_.size() - offset_ < length) return std::nullopt;
        std::string value(reinterpret_cast<const char*>(bytes_.data() + offset_), length);
        offset_ += length;
        return value;
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t offset_ = 0;
};

void appendBigEndian(plist::Data& out, std::uint64_t value, std::size_t width) {
    for (std::size_t i = width; i-- > 0;) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

bool fitsRecord(const std::string& text) {
    return text.size() < kMaxPathBytes && text.find('\0') == std::string::npos;
}

}  // namespace

std::optional<plist::Data> encodeAliasRecord(const FileIdentity& identity) {
    if (identity.path.empty() || !fitsRecord(identity.path) || !fitsRecord(identity.bundleIdentifier))
        return std::nullopt;
    plist::Data out(std::begin(kMagic), std::end(kMagic));
    appendBigEndian(out, kAliasRecordVersion, 2);
    appendBigEndian(out, identity.device, 8);
    appendBigEndian(out, identity.inode, 8);
    appendBigEndian(out, identity.birthNs, 8);
    for (const std::string* text : {&identity.path, &identity.bundleIdentifier}) {
        appendBigEndian(out, text->size(), 2);
        out.insert(out.end(), text->begin(), text->end());
    }
    return out;
}

std::optional<FileIdentity> decodeAliasRecord(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < sizeof kMagic || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) return std::nullopt;
    Reader reader(bytes);
    reader.seek(sizeof kMagic);
    if (reader.unsignedBigEndian(2) != kAliasRecordVersion) return std::nullopt;
    FileIdentity identity;
    auto device = reader.unsignedBigEndian(8);
    auto inode = reader.unsignedBigEndian(8);
    auto birth = reader.unsignedBigEndian(8);
    if (!device || !inode || !birth) return std::nullopt;
    identity.device = *device;
    identity.inode = *inode;
    identity.birthNs = *birth;
    for (std::string* text : {&identity.path, &identity.bundleIdentifier}) {
        auto length = reader.unsignedBigEndian(2);
        if (!length) return std::nullopt;
        auto value = reader.text(static_cast<std::size_t>(*length));
        if (!value || !fitsRecord(*value)) return std::nullopt;
        *text = std::move(*value);
    }
    if (!reader.atEnd() || identity.path.empty()) return std::nullopt;
    return identity;
}

std::optional<std::string> classicAliasPosixPath(std::span<const std::uint8_t> bytes) {
    Reader reader(bytes);
    reader.seek(4);  // the user type: any value
    auto recordSize = reader.unsignedBigEndian(2);
    auto version = reader.unsignedBigEndian(2);
    if (!recordSize || !version) return std::nullopt;
    // The record states its own size; trust neither a size beyond the bytes nor one below the header.
    std::size_t extendedData = *version == 2 ? kClassicV2ExtendedDataOffset
                               : *version == 3 ? kClassicV3ExtendedDataOffset
                                               : 0;
    if (extendedData == 0 || *recordSize > bytes.size() || *recordSize < extendedData) return std::nullopt;
    Reader record(bytes.first(static_cast<std::size_t>(*recordSize)));
    record.seek(extendedData);

    std::optional<std::string> posixPath, mountPoint;
    for (;;) {
        auto tag = record.unsignedBigEndian(2);
        auto length = record.unsignedBigEndian(2);
        if (!tag || !length) return std::nullopt;  // ran off the record without an end tag
        auto signedTag = static_cast<std::int16_t>(*tag);
        if (signedTag == kClassicTagEnd) break;
        auto value = record.text(static_cast<std::size_t>(*length));
        if (!value) return std::nullopt;
        if (*length % 2 == 1 && !record.atEnd()) record.seek(record.offset() + 1);  // padded to even
        if (signedTag == kClassicTagPosixPath && !posixPath) posixPath = std::move(value);
        if (signedTag == kClassicTagPosixMountPoint && !mountPoint) mountPoint = std::move(value);
    }
    if (!posixPath || posixPath->empty() || posixPath->find('\0') != std::string::npos) return std::nullopt;
    std::string path = *posixPath;
    if (path.front() != '/') path.insert(path.begin(), '/');
    if (mountPoint && !mountPoint->empty() && *mountPoint != "/" && mountPoint->find('\0') == std::string::npos) {
        std::string mount = *mountPoint;
        while (mount.size() > 1 && mount.back() == '/') mount.pop_back();
        path = mount + path;
    }
    if (!isPathWithinLimit(path)) return std::nullopt;
    return path;
}

}  // namespace corvalis

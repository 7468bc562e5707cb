#include "plist/PlistIO.h"

#include <cstring>

#include "plist/BinaryPlist.h"
#include "plist/XmlPlist.h"

namespace corvalis::plist {

namespace {

constexpr char kBinaryMagic[] = "bplist00";

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
    result.error = binary ? detail::readBinary(bytes, kMaxNestingDepth, result.value)
                          : detail::readXml(bytes, kMaxNestingDepth, result.value);
    if (!result.ok()) result.value = Value();
    return result;
}

ParseResult parse(std::string_view text) {
    return parse(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

WriteResult serialize(const Value& value, Format format) {
    WriteResult result;
    if (format == Format::Binary) {
        result.bytes = detail::writeBinary(value, kMaxNestingDepth, result.error);
    } else {
        std::string text = detail::writeXml(value, kMaxNestingDepth, result.error);
        result.bytes.assign(text.begin(), text.end());
    }
    return result;
}

std::string toXml(const Value& value) {
    std::string error;
    return detail::writeXml(value, kMaxNestingDepth, error);
}

}  // namespace corvalis::plist

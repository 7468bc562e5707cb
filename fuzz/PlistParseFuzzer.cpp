// Any bytes: parsing must answer a value or an error, and whatever parses must
// write out again in both formats and parse back.

#include <cstdlib>

#include "plist/PlistIO.h"

using namespace corvalis::plist;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ParseResult parsed = parse(std::span<const std::uint8_t>(data, size));
    if (!parsed.ok()) return 0;
    for (Format format : {Format::Xml, Format::Binary}) {
        WriteResult written = serialize(parsed.value, format);
        if (!written.ok()) continue;  // e.g. a date beyond what the formats hold
        if (!parse(std::span<const std::uint8_t>(written.bytes)).ok()) std::abort();
    }
    return 0;
}

// Any bytes: parsing must answer a value or an error, and whatever parses must
// write out again in both formats and parse back to the same contents (binary
// exactly; XML keeps whole seconds of dates and no NaN payloads). Binary input that libplist reads
// as well must give the same contents through libplist's XML.

#include <plist/plist.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "plist/ContentKey.h"
#include "plist/PlistIO.h"

using namespace corvalis::plist;

namespace {

// Values XML cannot give back bit for bit: dates (whole seconds) and NaN payloads.
bool notExactInXml(const Value& value) {
    if (value.date() || (value.real() && std::isnan(value.real()->value))) return true;
    if (const Array* array = value.array())
        for (const Value& item : *array)
            if (notExactInXml(item)) return true;
    if (const Dictionary* dict = value.dictionary())
        for (const auto& entry : *dict)
            if (notExactInXml(entry.second)) return true;
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ParseResult parsed = parse(std::span<const std::uint8_t>(data, size));
    if (!parsed.ok()) return 0;
    std::string key = contentKey(parsed.value);
    for (Format format : {Format::Xml, Format::Binary}) {
        WriteResult written = serialize(parsed.value, format);
        if (!written.ok()) continue;  // e.g. a date outside the years XML can say
        ParseResult back = parse(std::span<const std::uint8_t>(written.bytes));
        if (!back.ok()) std::abort();
        if ((format == Format::Binary || !notExactInXml(parsed.value)) && contentKey(back.value) != key) std::abort();
        // Our binary output through libplist: the same contents come back (dates aside: libplist keeps 32 bits).
        if (format == Format::Binary && !notExactInXml(parsed.value)) {
            plist_t node = nullptr;
            plist_from_bin(reinterpret_cast<const char*>(written.bytes.data()),
                           static_cast<std::uint32_t>(written.bytes.size()), &node);
            if (!node) std::abort();
            char* xml = nullptr;
            std::uint32_t length = 0;
            plist_to_xml(node, &xml, &length);
            plist_free(node);
            ParseResult viaLibplist = parse(std::string_view(xml ? xml : "", xml ? length : 0));
            std::free(xml);
            if (!viaLibplist.ok()) std::abort();
        }
    }
    return 0;
}

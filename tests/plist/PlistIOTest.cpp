#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "plist/PlistIO.h"

using namespace corvalis::plist;

namespace {

Dictionary sample() {
    return Dictionary{
        {"Bool", true},
        {"Negative", Value::int32(-5)},
        {"Large", Value::uint32(4000000000u)},
        {"Short", Value::int16(3)},
        {"Float", Value::real32(0.5f)},
        {"Double", Value::real64(0.1)},
        {"Text", "Grüße \"&<>\" 日本"},
        {"Empty", ""},
        {"Bytes", Data{0, 1, 2, 255}},
        {"When", Date{123456789.0}},
        {"List", Array{Value::int8(1), Array{}, Dictionary{}, "x"}},
        {"Nested", Dictionary{{"Inner", Dictionary{{"Deep", Array{Value(false)}}}}}},
    };
}

ParseResult roundTrip(const Value& value, Format format) {
    WriteResult written = serialize(value, format);
    EXPECT_TRUE(written.ok()) << written.error;
    return parse(std::span<const std::uint8_t>(written.bytes));
}

// A binary property list whose objects 0..n-1 are arrays, each holding the next one.
std::vector<std::uint8_t> chainOfArrays(std::uint32_t n, bool lastPointsToFirst) {
    std::vector<std::uint8_t> bytes{'b', 'p', 'l', 'i', 's', 't', '0', '0'};
    std::vector<std::uint32_t> offsets;
    for (std::uint32_t i = 0; i < n; ++i) {
        offsets.push_back(static_cast<std::uint32_t>(bytes.size()));
        bool last = i + 1 == n;
        if (last && !lastPointsToFirst) {
            bytes.push_back(0xA0);
            continue;
        }
        std::uint32_t next = last ? 0 : i + 1;
        bytes.insert(bytes.end(), {0xA1, std::uint8_t(next >> 24), std::uint8_t(next >> 16), std::uint8_t(next >> 8),
                                   std::uint8_t(next)});
    }
    std::uint64_t table = bytes.size();
    for (std::uint32_t offset : offsets)
        bytes.insert(bytes.end(), {std::uint8_t(offset >> 24), std::uint8_t(offset >> 16), std::uint8_t(offset >> 8),
                                   std::uint8_t(offset)});
    std::uint8_t trailer[32] = {};
    trailer[6] = 4;
    trailer[7] = 4;
    for (int i = 0; i < 8; ++i) {
        trailer[8 + i] = std::uint8_t(std::uint64_t(n) >> (56 - 8 * i));
        trailer[24 + i] = std::uint8_t(table >> (56 - 8 * i));
    }
    bytes.insert(bytes.end(), trailer, trailer + 32);
    return bytes;
}

}  // namespace

TEST(PlistIO, BothFormatsRoundTripEveryType) {
    for (Format format : {Format::Xml, Format::Binary}) {
        ParseResult back = roundTrip(sample(), format);
        ASSERT_TRUE(back.ok()) << back.error;
        EXPECT_EQ(back.format, format);
        EXPECT_EQ(back.value, Value(sample()));
        // Integers come back as 64-bit signed values whatever width they were made with.
        EXPECT_EQ(back.value.dictionary()->operator[]("Negative").integer()->toInt64(), -5);
        EXPECT_EQ(back.value.dictionary()->operator[]("Large").integer()->toInt64(), 4000000000);
    }
}

TEST(PlistIO, DatesAndIntegersKeepTheirExactValuesInBinary) {
    Dictionary values{{"Before2001", Date{-99.5}}, {"After", Date{10.25}}, {"Year1900", Date{-3187296000.0}},
                      {"Year3000", Date{31556908800.0}}, {"Max", Value::uint64(UINT64_MAX)},
                      {"Min", Value::int64(INT64_MIN)}, {"Above", Value::uint64(std::uint64_t(INT64_MAX) + 1)}};
    ParseResult binary = roundTrip(values, Format::Binary);
    ASSERT_TRUE(binary.ok()) << binary.error;
    EXPECT_EQ(binary.value, Value(values));
    EXPECT_EQ((*binary.value.dictionary())["Max"].integer()->toUInt64(), UINT64_MAX);
    EXPECT_FALSE((*binary.value.dictionary())["Max"].integer()->isSigned());
    EXPECT_EQ((*binary.value.dictionary())["Year1900"].date()->seconds, -3187296000.0);
    ParseResult xml = roundTrip(Dictionary{{"After", Date{10.25}}}, Format::Xml);
    EXPECT_EQ(xml.value.dictionary()->operator[]("After").date()->seconds, 10.0);
    EXPECT_FALSE(serialize(Dictionary{{"Never", Date{std::nan("")}}}, Format::Binary).ok());
}

TEST(PlistIO, BinaryFilesTheStoreCannotHoldExactlyAreRefused) {
    struct Case {
        std::vector<std::uint8_t> object;
        const char* reason;
    } cases[] = {
        {{0x14, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}, "64-bit"},  // 2^64
        {{0x52, 'a', 0xE9}, "ASCII"},                                      // Latin-1 in an ASCII string
        {{0x61, 0xD8, 0x00}, "UTF-16"},                                    // an unpaired surrogate
        {{0x00}, "unknown object"},                                       // null
    };
    for (const Case& c : cases) {
        std::vector<std::uint8_t> bytes{'b', 'p', 'l', 'i', 's', 't', '0', '0'};
        bytes.insert(bytes.end(), c.object.begin(), c.object.end());
        std::uint8_t table = static_cast<std::uint8_t>(bytes.size());
        bytes.push_back(8);
        std::uint8_t trailer[32] = {};
        trailer[6] = 1;
        trailer[7] = 1;
        trailer[15] = 1;
        trailer[31] = table;
        bytes.insert(bytes.end(), trailer, trailer + 32);
        ParseResult parsed = parse(std::span<const std::uint8_t>(bytes));
        EXPECT_NE(parsed.error.find(c.reason), std::string::npos) << c.reason << ": " << parsed.error;
    }
}

TEST(PlistIO, ValuesNoFileCanHoldAreRefusedOrSkipped) {
    EXPECT_FALSE(serialize(Value(), Format::Xml).ok());
    Array deep;
    Array current = deep;
    for (int i = 0; i < kMaxNestingDepth + 5; ++i) {
        Array next;
        current.append(next);
        current = next;
    }
    EXPECT_FALSE(serialize(deep, Format::Binary).ok());
}

TEST(PlistIO, BadInputGivesAnErrorNeverACrash) {
    EXPECT_FALSE(parse(std::string_view("")).ok());
    EXPECT_FALSE(parse(std::string_view("hello, world")).ok());
    EXPECT_FALSE(parse(std::string_view("<plist><dict><key>a</key>")).ok());
    EXPECT_FALSE(parse(std::string_view("bplist00")).ok());
    EXPECT_FALSE(parse(std::string_view("<!DOCTYPE plist [")).ok());  // ends inside the document type

    WriteResult good = serialize(sample(), Format::Binary);
    for (std::size_t cut : {good.bytes.size() - 1, good.bytes.size() / 2, std::size_t(12)}) {
        std::vector<std::uint8_t> truncated(good.bytes.begin(), good.bytes.begin() + static_cast<long>(cut));
        EXPECT_FALSE(parse(std::span<const std::uint8_t>(truncated)).ok()) << cut;
    }
    // Every single-byte corruption of the trailer and offset table is either refused or parsed safely.
    for (std::size_t at = good.bytes.size() - 40; at < good.bytes.size(); ++at) {
        std::vector<std::uint8_t> corrupt = good.bytes;
        corrupt[at] ^= 0xFF;
        parse(std::span<const std::uint8_t>(corrupt));
    }
}

TEST(PlistIO, HostileNestingAndCyclesAreRefusedBeforeParsing) {
    std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
    for (int i = 0; i < 100000; ++i) xml += "<array>";
    ParseResult deepXml = parse(std::string_view(xml));
    EXPECT_NE(deepXml.error.find("nesting"), std::string::npos) << deepXml.error;

    auto deepBinary = chainOfArrays(100000, false);
    EXPECT_NE(parse(std::span<const std::uint8_t>(deepBinary)).error.find("nesting"), std::string::npos);
    auto cycle = chainOfArrays(3, true);
    EXPECT_NE(parse(std::span<const std::uint8_t>(cycle)).error.find("circular"), std::string::npos);

    auto shallow = chainOfArrays(kMaxNestingDepth, false);
    ParseResult ok = parse(std::span<const std::uint8_t>(shallow));
    EXPECT_TRUE(ok.ok()) << ok.error;
    EXPECT_TRUE(parse(std::string_view("<plist><array><array/><dict/></array></plist>")).ok());
}

TEST(PlistIO, GiganticSizesAreRefused) {
    // A data object claiming 2^60 bytes.
    std::vector<std::uint8_t> bytes{'b', 'p', 'l', 'i', 's', 't', '0', '0', 0x4F, 0x13, 0x10, 0, 0, 0, 0, 0, 0, 0, 8};
    std::uint8_t trailer[32] = {};
    trailer[6] = 1;
    trailer[7] = 1;
    trailer[15] = 1;
    trailer[31] = 19;
    bytes.insert(bytes.end(), trailer, trailer + 32);
    EXPECT_FALSE(parse(std::span<const std::uint8_t>(bytes)).ok());
}

TEST(PlistIO, XmlTheStoreCannotHoldExactlyIsRefused) {
    const char nul[] = "<plist><array><string>ab\0cd</string></array></plist>";
    struct Case {
        std::string xml;
        const char* reason;
    } cases[] = {
        {std::string(nul, sizeof nul - 1), "NUL"},
        {"<plist><integer>12abc</integer></plist>", "malformed integer"},
        {"<plist><integer>18446744073709551616</integer></plist>", "64-bit"},
        {"<plist><integer>-9223372036854775809</integer></plist>", "64-bit"},
        {"<plist><string>caf\xE9</string></plist>", "UTF-8"},
        {"<plist><date>2001-13-01T00:00:00Z</date></plist>", "malformed date"},
        {"<plist><real>1.5x</real></plist>", "malformed real"},
    };
    for (const Case& c : cases) {
        ParseResult parsed = parse(std::string_view(c.xml));
        EXPECT_NE(parsed.error.find(c.reason), std::string::npos) << c.xml << ": " << parsed.error;
    }
    ParseResult exact = parse(std::string_view(
        "<?xml version=\"1.0\"?><!DOCTYPE plist><plist version=\"1.0\"><array><integer>18446744073709551615</integer>"
        "<integer>-9223372036854775808</integer><date>1900-01-01T00:00:00Z</date><date>2100-01-01T00:00:00Z</date>"
        "<string>&lt;&#x65E5;<![CDATA[&]]></string></array></plist>"));
    ASSERT_TRUE(exact.ok()) << exact.error;
    const Array& items = *exact.value.array();
    EXPECT_EQ(items[0].integer()->toUInt64(), UINT64_MAX);
    EXPECT_EQ(items[1].integer()->toInt64(), INT64_MIN);
    EXPECT_EQ(items[2].date()->seconds, -3187296000.0);
    EXPECT_EQ(items[3].date()->seconds, 3124137600.0);
    EXPECT_EQ(*items[4].string(), "<日&");
    EXPECT_EQ(roundTrip(exact.value, Format::Xml).value, exact.value);
}

TEST(PlistIO, PythonPlistlibReadsWhatWeWriteAndWeReadWhatItWrites) {
    // The same values on both sides: limits of integers, dates outside libplist's 32 bits, text beyond ASCII.
    const char* script = R"(
import datetime, plistlib, sys
values = {"Max": 2**64 - 1, "Min": -2**63, "Old": datetime.datetime(1900, 1, 1), "Late": datetime.datetime(2100, 1, 1),
          "Text": "Gr\u00fc\u00dfe \U0001F600 <&>", "Data": b"\x00\xff", "Real": 0.1, "List": [True, False, {}]}
for name, fmt in (("xml", plistlib.FMT_XML), ("bplist", plistlib.FMT_BINARY)):
    if sys.argv[1] == "write":
        open(sys.argv[2] + "/python." + name, "wb").write(plistlib.dumps(values, fmt=fmt))
    else:
        assert plistlib.load(open(sys.argv[2] + "/ours." + name, "rb")) == values, name
)";
    Dictionary expected{{"Max", Value::uint64(UINT64_MAX)}, {"Min", Value::int64(INT64_MIN)},
                        {"Old", Date{-3187296000.0}}, {"Late", Date{3124137600.0}},
                        {"Text", "Grüße 😀 <&>"}, {"Data", Data{0, 255}}, {"Real", Value::real64(0.1)},
                        {"List", Array{true, false, Dictionary{}}}};
    std::filesystem::path dir = std::filesystem::temp_directory_path() / ("plistlib-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    std::ofstream(dir / "oracle.py") << script;
    auto python = [&](const char* mode) {
        return std::system(("python3 " + (dir / "oracle.py").string() + " " + mode + " " + dir.string()).c_str());
    };
    ASSERT_EQ(python("write"), 0);
    for (const char* name : {"xml", "bplist"}) {
        std::ifstream in(dir / (std::string("python.") + name), std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(in)), {});
        ParseResult parsed = parse(std::string_view(bytes));
        ASSERT_TRUE(parsed.ok()) << name << ": " << parsed.error;
        EXPECT_EQ(parsed.value, Value(expected)) << name;
        WriteResult ours = serialize(expected, std::string_view(name) == "xml" ? Format::Xml : Format::Binary);
        std::ofstream(dir / (std::string("ours.") + name), std::ios::binary)
            .write(reinterpret_cast<const char*>(ours.bytes.data()), static_cast<std::streamsize>(ours.bytes.size()));
    }
    EXPECT_EQ(python("read"), 0);
    std::filesystem::remove_all(dir);
}

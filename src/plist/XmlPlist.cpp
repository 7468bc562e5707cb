#include "plist/XmlPlist.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "plist/Utf8.h"

namespace corvalis::plist::detail {

namespace {

// Days from 1970-01-01 to the civil date, and back (proleptic Gregorian calendar).
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    unsigned yoe = static_cast<unsigned>(y - era * 400);
    unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void civilFromDays(std::int64_t z, std::int64_t& y, unsigned& m, unsigned& d) {
    z += 719468;
    std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    unsigned doe = static_cast<unsigned>(z - era * 146097);
    unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y = static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2);
}

constexpr std::int64_t kDaysTo2001 = 11323;  // 1970-01-01 to 2001-01-01

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

class Reader {
public:
    Reader(std::span<const std::uint8_t> bytes, int maxDepth)
        : text_(reinterpret_cast<const char*>(bytes.data()), bytes.size()), maxDepth_(maxDepth) {}

    std::string read(Value& out) {
        if (text_.starts_with("\xEF\xBB\xBF")) pos_ = 3;
        skipMisc();
        if (!fail_.empty()) return fail_;
        bool wrapped = text_.substr(pos_).starts_with("<plist") && pos_ + 6 < text_.size() &&
                       (isSpace(text_[pos_ + 6]) || text_[pos_ + 6] == '>');
        if (wrapped) {
            std::size_t close = text_.find('>', pos_);
            if (close == std::string_view::npos || text_[close - 1] == '/') return "not a valid XML property list";
            pos_ = close + 1;
        }
        out = value(1);
        if (!fail_.empty()) return fail_;
        skipMisc();
        if (wrapped && !consume("</plist>")) return error("the document does not end with </plist>");
        return fail_;
    }

private:
    std::string error(std::string message) {
        if (fail_.empty()) fail_ = std::move(message);
        return fail_;
    }
    Value failed(std::string message) {
        error(std::move(message));
        return Value();
    }

    bool consume(std::string_view literal) {
        if (pos_ > text_.size() || !text_.substr(pos_).starts_with(literal)) return false;
        pos_ += literal.size();
        return true;
    }

    bool skipPast(std::string_view end) {
        std::size_t at = text_.find(end, pos_);
        if (at == std::string_view::npos) {
            error("not a valid XML property list");
            pos_ = text_.size();
            return false;
        }
        pos_ = at + end.size();
        return true;
    }

    // White space, comments, processing instructions and the document type.
    void skipMisc() {
        for (;;) {
            while (pos_ < text_.size() && isSpace(text_[pos_])) ++pos_;
            if (consume("<!--")) {
                if (!skipPast("-->")) return;
            } else if (consume("<?")) {
                if (!skipPast("?>")) return;
            } else if (consume("<!DOCTYPE")) {
                int brackets = 0;
                while (pos_ < text_.size() && !(text_[pos_] == '>' && brackets == 0)) {
                    brackets += text_[pos_] == '[' ? 1 : text_[pos_] == ']' ? -1 : 0;
                    ++pos_;
                }
                if (pos_ >= text_.size()) return void(error("not a valid XML property list"));
                ++pos_;
            } else {
                return;
            }
        }
    }

    // The element's name at "<NAME", whether it closes itself, positioned after its '>'.
    bool openTag(std::string& name, bool& empty) {
        if (pos_ >= text_.size() || text_[pos_] != '<') return false;
        std::size_t start = ++pos_;
        while (pos_ < text_.size() && text_[pos_] != '>' && text_[pos_] != '/' && !isSpace(text_[pos_])) ++pos_;
        name.assign(text_.substr(start, pos_ - start));
        std::size_t close = text_.find('>', pos_);
        if (close == std::string_view::npos) return false;
        empty = text_[close - 1] == '/';
        pos_ = close + 1;
        return true;
    }

    bool closeTag(std::string_view name) {
        skipMisc();
        if (!consume("</") || !consume(name)) return false;
        while (pos_ < text_.size() && isSpace(text_[pos_])) ++pos_;
        return consume(">");
    }

    // Character data up to "</", entities and CDATA sections resolved; must be UTF-8 without NUL.
    bool characters(std::string& out) {
        out.clear();
        for (;;) {
            std::size_t stop = text_.find_first_of("<&", pos_);
            if (stop == std::string_view::npos) return false;
            out.append(text_.substr(pos_, stop - pos_));
            pos_ = stop;
            if (text_[pos_] == '&') {
                std::size_t semi = text_.find(';', pos_);
                if (semi == std::string_view::npos || semi - pos_ > 12) return false;
                std::string_view entity = text_.substr(pos_ + 1, semi - pos_ - 1);
                pos_ = semi + 1;
                if (entity == "lt") out += '<';
                else if (entity == "gt") out += '>';
                else if (entity == "amp") out += '&';
                else if (entity == "quot") out += '"';
                else if (entity == "apos") out += '\'';
                else if (entity.starts_with('#')) {
                    bool hex = entity.size() > 1 && (entity[1] == 'x' || entity[1] == 'X');
                    std::string_view digits = entity.substr(hex ? 2 : 1);
                    std::uint32_t code = 0;
                    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), code, hex ? 16 : 10);
                    if (ec != std::errc() || end != digits.data() + digits.size() || digits.empty() || code == 0 ||
                        code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
                        return false;
                    appendUtf8(out, code);
                } else {
                    return false;
                }
            } else if (consume("<![CDATA[")) {
                std::size_t end = text_.find("]]>", pos_);
                if (end == std::string_view::npos) return false;
                out.append(text_.substr(pos_, end - pos_));
                pos_ = end + 3;
            } else if (consume("<!--")) {
                if (!skipPast("-->")) return false;
            } else {
                break;
            }
        }
        if (std::memchr(out.data(), 0, out.size())) return error("text with a NUL character"), false;
        if (!isValidUtf8(out)) return error("text that is not valid UTF-8"), false;
        return true;
    }

    // The text of a scalar element whose start tag was read: "" for <x/>.
    bool scalarText(const std::string& name, bool empty, std::string& out) {
        out.clear();
        if (empty) return true;
        return characters(out) && closeTag(name);
    }

    Value value(int depth) {
        if (depth > maxDepth_) return failed("nesting deeper than " + std::to_string(maxDepth_) + " levels");
        skipMisc();
        std::string name;
        bool empty = false;
        if (!fail_.empty() || !openTag(name, empty)) return failed("not a valid XML property list");
        if (name == "dict") return dictionary(depth, empty);
        if (name == "array") return array(depth, empty);
        std::string text;
        if (name == "true" || name == "false") {
            if (!scalarText(name, empty, text) || !trimmed(text).empty()) return failed("not a valid XML property list");
            return Value(name == "true");
        }
        if (!scalarText(name, empty, text)) return failed("not a valid XML property list");
        if (name == "string") return Value(std::move(text));
        if (name == "integer") return integer(trimmed(text));
        if (name == "real") return real(trimmed(text));
        if (name == "date") return date(trimmed(text));
        if (name == "data") return data(text);
        return failed("unknown element <" + name + "> in XML property list");
    }

    Value dictionary(int depth, bool empty) {
        Dictionary dict;
        if (empty) return dict;
        std::string name, key;
        for (;;) {
            skipMisc();
            if (closeTag("dict")) return dict;
            bool keyEmpty = false;
            if (!fail_.empty() || !openTag(name, keyEmpty) || name != "key" || !scalarText(name, keyEmpty, key))
                return failed("not a valid XML property list");
            Value item = value(depth + 1);
            if (!fail_.empty()) return Value();
            dict.set(key, std::move(item));
        }
    }

    Value array(int depth, bool empty) {
        Array list;
        if (empty) return list;
        for (;;) {
            skipMisc();
            if (closeTag("array")) return list;
            if (!fail_.empty()) return Value();
            list.append(value(depth + 1));
            if (!fail_.empty()) return Value();
        }
    }

    Value integer(std::string_view text) {
        bool negative = !text.empty() && text[0] == '-';
        if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
        int base = 10;
        if (text.starts_with("0x") || text.starts_with("0X")) {
            base = 16;
            text.remove_prefix(2);
        }
        std::uint64_t magnitude = 0;
        auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
        if (text.empty() || ec != std::errc() || end != text.data() + text.size())
            return failed(ec == std::errc::result_out_of_range ? "integer outside the 64-bit range"
                                                               : "malformed integer in XML property list");
        if (negative) {
            if (magnitude > std::uint64_t(1) << 63) return failed("integer outside the 64-bit range");
            return Value::int64(static_cast<std::int64_t>(~magnitude + 1));
        }
        if (magnitude > std::uint64_t(std::numeric_limits<std::int64_t>::max())) return Value::uint64(magnitude);
        return Value::int64(static_cast<std::int64_t>(magnitude));
    }

    Value real(std::string_view text) {
        if (text.starts_with('+')) text.remove_prefix(1);
        double number = 0;
        auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), number);
        // Out of range rounds to zero or infinity as strtod does; anything else malformed is refused.
        if (text.empty() || (ec != std::errc() && ec != std::errc::result_out_of_range) ||
            end != text.data() + text.size())
            return failed("malformed real number in XML property list");
        return Value::real64(number);
    }

    Value date(std::string_view text) {
        // YYYY-MM-DDTHH:MM:SSZ
        int parts[6] = {};
        static constexpr std::size_t kAt[] = {0, 5, 8, 11, 14, 17}, kLength[] = {4, 2, 2, 2, 2, 2};
        bool ok = text.size() == 20 && text[4] == '-' && text[7] == '-' && text[10] == 'T' && text[13] == ':' &&
                  text[16] == ':' && text[19] == 'Z';
        for (int i = 0; ok && i < 6; ++i) {
            const char* begin = text.data() + kAt[i];
            auto [end, ec] = std::from_chars(begin, begin + kLength[i], parts[i]);
            ok = ec == std::errc() && end == begin + kLength[i];
        }
        ok = ok && parts[1] >= 1 && parts[1] <= 12 && parts[2] >= 1 && parts[2] <= 31 && parts[3] < 24 &&
             parts[4] < 60 && parts[5] < 61;
        if (!ok) return failed("malformed date in XML property list");
        std::int64_t days = daysFromCivil(parts[0], static_cast<unsigned>(parts[1]), static_cast<unsigned>(parts[2]));
        double seconds = static_cast<double>((days - kDaysTo2001) * 86400 + parts[3] * 3600 + parts[4] * 60 + parts[5]);
        return Value(Date{seconds});
    }

    Value data(std::string_view text) {
        Data bytes;
        bytes.reserve(text.size() * 3 / 4);
        std::uint32_t bits = 0;
        int count = 0, padding = 0;
        for (char c : text) {
            if (isSpace(c)) continue;
            if (c == '=') {
                ++padding;
                continue;
            }
            const char* at = c ? std::strchr(kBase64, c) : nullptr;
            if (!at || padding) return failed("malformed data in XML property list");
            bits = (bits << 6) | static_cast<std::uint32_t>(at - kBase64);
            if (++count == 4) {
                bytes.insert(bytes.end(), {std::uint8_t(bits >> 16), std::uint8_t(bits >> 8), std::uint8_t(bits)});
                bits = 0;
                count = 0;
            }
        }
        if (count == 1) return failed("malformed data in XML property list");
        if (count == 2) bytes.push_back(std::uint8_t(bits >> 4));
        if (count == 3) bytes.insert(bytes.end(), {std::uint8_t(bits >> 10), std::uint8_t(bits >> 2)});
        return Value(std::move(bytes));
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    int maxDepth_;
    std::string fail_;
};

class Writer {
public:
    explicit Writer(int maxDepth) : maxDepth_(maxDepth) {}

    std::string write(const Value& value, std::string& error) {
        out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
               "<plist version=\"1.0\">\n";
        element(value, 0);
        if (!error_.empty()) {
            error = error_;
            return {};
        }
        out_ += "</plist>\n";
        return std::move(out_);
    }

private:
    void fail(std::string message) {
        if (error_.empty()) error_ = std::move(message);
    }

    void escaped(std::string_view text) {
        for (char c : text) {
            switch (c) {
            case '<': out_ += "&lt;"; break;
            case '>': out_ += "&gt;"; break;
            case '&': out_ += "&amp;"; break;
            default: out_ += c;
            }
        }
    }

    void simple(int depth, const char* tag, std::string_view text) {
        out_.append(depth, '\t');
        out_.append("<").append(tag).append(">");
        escaped(text);
        out_.append("</").append(tag).append(">\n");
    }

    void element(const Value& value, int depth) {
        if (depth >= maxDepth_) return fail("nesting deeper than " + std::to_string(maxDepth_) + " levels");
        char number[64];
        switch (value.type()) {
        case Type::Boolean:
            out_.append(depth, '\t').append(*value.boolean() ? "<true/>\n" : "<false/>\n");
            return;
        case Type::Integer: {
            const Integer& i = *value.integer();
            auto [end, ec] = i.isSigned() ? std::to_chars(number, number + sizeof number, i.toInt64())
                                          : std::to_chars(number, number + sizeof number, i.toUInt64());
            return simple(depth, "integer", std::string_view(number, static_cast<std::size_t>(end - number)));
        }
        case Type::Real: {
            double d = value.real()->value;
            if (std::isnan(d)) return simple(depth, "real", "nan");
            if (std::isinf(d)) return simple(depth, "real", d > 0 ? "+infinity" : "-infinity");
            auto [end, ec] = std::to_chars(number, number + sizeof number, d);
            return simple(depth, "real", std::string_view(number, static_cast<std::size_t>(end - number)));
        }
        case Type::String: return simple(depth, "string", *value.string());
        case Type::Date: {
            double seconds = std::floor(value.date()->seconds);  // the XML form keeps whole seconds
            // Years 1 to 9999: what the date's four digits can say.
            if (std::isnan(seconds) || seconds < -63113904000.0 || seconds > 252423993599.0)
                return fail("date outside the years 1 to 9999");
            auto whole = static_cast<std::int64_t>(seconds);
            std::int64_t days = (whole >= 0 ? whole : whole - 86399) / 86400;
            std::int64_t rest = whole - days * 86400, year = 0;
            unsigned month = 0, day = 0;
            civilFromDays(days + kDaysTo2001, year, month, day);
            std::snprintf(number, sizeof number, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(year), month, day,
                          static_cast<int>(rest / 3600), static_cast<int>(rest / 60 % 60), static_cast<int>(rest % 60));
            return simple(depth, "date", number);
        }
        case Type::Data: {
            const Data& d = *value.data();
            out_.append(depth, '\t').append("<data>");
            for (std::size_t i = 0; i < d.size(); i += 3) {
                std::uint32_t bits = std::uint32_t(d[i]) << 16;
                if (i + 1 < d.size()) bits |= std::uint32_t(d[i + 1]) << 8;
                if (i + 2 < d.size()) bits |= d[i + 2];
                out_ += kBase64[bits >> 18];
                out_ += kBase64[(bits >> 12) & 63];
                out_ += i + 1 < d.size() ? kBase64[(bits >> 6) & 63] : '=';
                out_ += i + 2 < d.size() ? kBase64[bits & 63] : '=';
            }
            out_.append("</data>\n");
            return;
        }
        case Type::Array: {
            out_.append(depth, '\t').append("<array>\n");
            for (const Value& item : *value.array())
                if (!item.isAbsent()) element(item, depth + 1);
            out_.append(depth, '\t').append("</array>\n");
            return;
        }
        case Type::Dictionary: {
            out_.append(depth, '\t').append("<dict>\n");
            for (const auto& [key, item] : *value.dictionary()) {
                if (item.isAbsent()) continue;
                simple(depth + 1, "key", key);
                element(item, depth + 1);
            }
            out_.append(depth, '\t').append("</dict>\n");
            return;
        }
        case Type::Absent: return fail("an absent value cannot be written");
        }
    }

    int maxDepth_;
    std::string out_;
    std::string error_;
};

}  // namespace

std::string readXml(std::span<const std::uint8_t> bytes, int maxDepth, Value& out) {
    return Reader(bytes, maxDepth).read(out);
}

std::string writeXml(const Value& value, int maxDepth, std::string& error) { return Writer(maxDepth).write(value, error); }

}  // namespace corvalis::plist::detail

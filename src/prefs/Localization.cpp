#include "text/Localization.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

#include "text/StringTables.h"

namespace corvalis {

namespace {

using Table = std::map<std::string, std::string, std::less<>>;

// Parses `"Key" = "Text";` lines; // and /* */ comments and blank lines are skipped.
// In the text, \" \\ and \n are escapes.
Table parseStrings(std::string_view source) {
    Table table;
    std::size_t i = 0;
    auto skipSpaceAndComments = [&] {
        while (i < source.size()) {
            if (std::isspace(static_cast<unsigned char>(source[i]))) {
                ++i;
            } else if (source.substr(i, 2) == "//") {
                while (i < source.size() && source[i] != '\n') ++i;
            } else if (source.substr(i, 2) == "/*") {
                auto end = source.find("*/", i + 2);
                i = end == std::string_view::npos ? source.size() : end + 2;
            } else {
                break;
            }
        }
    };
    auto quoted = [&](std::string& out) {
        if (i >= source.size() || source[i] != '"') return false;
        for (++i; i < source.size() && source[i] != '"'; ++i) {
            if (source[i] == '\\' && i + 1 < source.size()) {
                char next = source[++i];
                out += next == 'n' ? '\n' : next == 't' ? '\t' : next;
            } else {
                out += source[i];
            }
        }
        return i++ < source.size();
    };
    while (true) {
        skipSpaceAndComments();
        std::string key, text;
        if (!quoted(key)) break;
        skipSpaceAndComments();
        if (i >= source.size() || source[i++] != '=') break;
        skipSpaceAndComments();
        if (!quoted(text)) break;
        skipSpaceAndComments();
        if (i < source.size() && source[i] == ';') ++i;
        table[key] = text;
    }
    return table;
}

const Table& tableFor(std::string_view language) {
    static const std::map<std::string, Table, std::less<>> tables = [] {
        std::map<std::string, Table, std::less<>> all;
        for (const StringTableSource& source : stringTableSources()) {
            Table parsed = parseStrings(source.text);
            all[std::string(source.language)].merge(parsed);
        }
        return all;
    }();
    static const Table empty;
    auto it = tables.find(language);
    return it == tables.end() ? empty : it->second;
}

// The user's language from LC_ALL, LC_MESSAGES or LANG ("de_DE.UTF-8" gives "de").
std::string userLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            std::string language(value);
            return language.substr(0, language.find_first_of("_.@"));
        }
    }
    return "en";
}

std::string argumentText(const FormatArgument& argument) {
    if (const auto* text = std::get_if<std::string>(&argument)) return *text;
    if (const auto* number = std::get_if<long long>(&argument)) return std::to_string(*number);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", std::get<double>(argument));
    return buffer;
}

}  // namespace

std::string LocalizedString(std::string_view key) {
    static const std::string language = userLanguage();
    for (const Table* table : {&tableFor(language), &tableFor("en")}) {
        auto it = table->find(key);
        if (it != table->end()) return it->second;
    }
    return std::string(key);  // a missing text shows its key, as a missing translation does
}

std::string FormatText(std::string_view format, std::initializer_list<FormatArgument> arguments) {
    std::vector<FormatArgument> args(arguments);
    std::string out;
    std::size_t next = 0;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%' || i + 1 >= format.size()) {
            out += format[i];
            continue;
        }
        std::size_t j = i + 1;
        if (format[j] == '%') {
            out += '%';
            i = j;
            continue;
        }
        std::size_t index = next;
        std::size_t digits = j;
        while (digits < format.size() && std::isdigit(static_cast<unsigned char>(format[digits]))) ++digits;
        if (digits > j && digits < format.size() && format[digits] == '$') {
            index = std::stoul(std::string(format.substr(j, digits - j))) - 1;
            j = digits + 1;
        } else {
            ++next;
        }
        while (j < format.size() && (format[j] == 'l' || format[j] == 'q' || format[j] == 'h')) ++j;
        if (j >= format.size() || std::string_view("@sdiufgx").find(format[j]) == std::string_view::npos) {
            out += format[i];  // not a conversion we know: keep it as written
            continue;
        }
        if (index < args.size()) out += argumentText(args[index]);
        i = j;
    }
    return out;
}

std::string LocalizedFormat(std::string_view key, std::initializer_list<FormatArgument> arguments) {
    return FormatText(LocalizedString(key), arguments);
}

bool EnglishTableHasKey(std::string_view key) { return tableFor("en").contains(key); }

}  // namespace corvalis

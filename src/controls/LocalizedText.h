#pragma once
// The string tables for widgets: the same keys as LocalizedString, as QString.

#include <QString>

#include "text/Localization.h"

namespace corvalis {

inline QString localized(const char* key) { return QString::fromStdString(LocalizedString(key)); }

inline QString localizedFormat(const char* key, std::initializer_list<FormatArgument> arguments) {
    return QString::fromStdString(LocalizedFormat(key, arguments));
}

}  // namespace corvalis

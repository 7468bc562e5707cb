#pragma once
// The factory defaults of the controller's preferences domain.

#include "plist/Value.h"

namespace corvalis {

// Every key with a factory default, with the type and width the controller
// expects. Built on first call (the preview sizes follow the screen of that
// moment) and the same dictionary ever after. Treat it as immutable: copy
// (deepCopy) before changing anything taken from it.
const plist::Dictionary& defaultValues();

// Command ids written as four-character codes in decimal.
inline constexpr unsigned kQuickCopyPathCommandCode = 0x63506C73;  // 'cPls'
inline constexpr unsigned kLastCopyPathCommandCode = 0x63505058;   // 'cPPX'

}  // namespace corvalis

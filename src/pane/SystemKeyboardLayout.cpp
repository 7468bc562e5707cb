#include "pane/SystemKeyboardLayout.h"

#include "keys/KVKeyCombinationCenter.h"
#include "platform/linux/XkbKeyboardLayout.h"

namespace corvalis {

void useSystemKeyboardLayout() {
    KVKeyCombinationCenter::sharedCenter().setLayoutSource(
        [] { return std::shared_ptr<const KeyboardLayout>(XkbKeyboardLayout::current()); });
}

}  // namespace corvalis

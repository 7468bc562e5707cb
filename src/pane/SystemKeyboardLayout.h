#pragma once
// Connects the key names to the user's keyboard layout. Called once by whatever
// assembles the pane or the command-line tool; the layers below never choose a layout.

namespace corvalis {

// Makes the key-name centre follow the user's layout (read now and on every layoutChanged()).
void useSystemKeyboardLayout();

}  // namespace corvalis

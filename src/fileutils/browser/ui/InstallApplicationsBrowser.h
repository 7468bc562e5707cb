#pragma once
// Puts the applications browser beside the pane: made with the pane's store,
// local centre and running applications, handed to the tabs as their link,
// destroyed with the pane's tab controllers (before the store it uses), and
// shown on two sources by --screenshot.

namespace corvalis {

class ComKestrovaCorvalis_PrefsPane;

void installApplicationsBrowser(ComKestrovaCorvalis_PrefsPane& pane);

}  // namespace corvalis

#pragma once
// Puts the applications browser beside the pane: made with the pane's
// preferences, domain store, local centre and running applications, owned by
// the pane, handed to the tabs as their link, and shown on two sources by
// --screenshot.

namespace corvalis {

class ComKestrovaCorvalis_PrefsPane;

void installApplicationsBrowser(ComKestrovaCorvalis_PrefsPane& pane);

}  // namespace corvalis

#pragma once
// The window's word on domain files that could not be read at start: one alert,
// shown once the window is up, naming each file and what became of it.

class QWidget;

namespace corvalis {

class CorvalisPreferences;

// Takes the unreadable domains `prefs` met while loading and, when there is any,
// opens an alert sheet on `window` (from the event loop, once it runs).
void tellOfUnreadableDomains(QWidget* window, CorvalisPreferences& prefs);

}  // namespace corvalis

#pragma once
// What every tab that records key combinations does around a recording: the
// controller's hot keys are paused while keys are typed, and a refused
// combination is answered with a beep and a sheet.

#include <string>

namespace corvalis {

class EditorView;
class NotificationCenter;

void suspendHotKeys(NotificationCenter& distributed);
void resumeHotKeys(NotificationCenter& distributed);
// Beeps and tells why the combination was refused, asking for another one.
void refuseKeyCombination(EditorView& view, const std::string& error);

}  // namespace corvalis

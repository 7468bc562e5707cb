#pragma once
// Whether the session lets assistive technologies read other applications'
// windows: the AT-SPI bus's "IsEnabled" status, asked on the session bus.

namespace corvalis {

// False when there is no session bus or no accessibility bus on it.
bool AssistiveTechnologiesEnabled();

}  // namespace corvalis

#pragma once
// The pane's name and version, as its bundle information states them
// ("CFBundleName", "CFBundleVersion"); backups record the version.

namespace corvalis {

inline constexpr const char* kPaneName = "Corvalis";
inline constexpr const char* kPaneVersion = "0.1.0";

}  // namespace corvalis

#pragma once
// The session-bus signal that carries distributed notifications. Every process
// that posts or observes (pane, controller, command-line tool) uses these.

namespace corvalis::bus {

inline constexpr char kNotificationPath[] = "/com/kestrova/Corvalis";
inline constexpr char kNotificationInterface[] = "com.kestrova.Corvalis.Notifications";
// Arguments: name (s), object (s), user info (s: an XML property list, "" when none).
inline constexpr char kNotificationMember[] = "Notification";

}  // namespace corvalis::bus

namespace corvalis::bus {

// The well-known name the running controller owns on the session bus.
inline constexpr char kControllerBusName[] = "com.kestrova.Corvalis.Controller";

}  // namespace corvalis::bus

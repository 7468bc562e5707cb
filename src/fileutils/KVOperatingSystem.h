#pragma once
// The system version tests by which callers choose version-dependent behaviour.
// The host counts as the newest system known (10.13); CORVALIS_SYSTEM_VERSION
// (for example "10.6.8") makes every test answer as that older system would.

#include <optional>
#include <string_view>

namespace corvalis {

class KVOperatingSystem {
public:
    // A probed system version and the tests answered for it.
    struct SystemVersion {
        int major = 10;
        int minor = 13;
        int patch = 0;
        unsigned legacy = 0;  // 0x1068 for 10.6.8; 0 from 10.10 on

        // The system a CORVALIS_SYSTEM_VERSION value names; the newest when absent or unreadable.
        static SystemVersion probe(std::optional<std::string_view> envValue);

        // orLater: the named system or a later one; isLower: a system before the named one.
        bool is10_4orLater() const { return legacy == 0 || legacy >= 0x1040; }
        bool is10_5orLater() const { return legacy == 0 || legacy >= 0x1050; }
        bool is10_6orLater() const { return legacy == 0 || legacy >= 0x1060; }
        bool is10_6_6orLater() const { return legacy == 0 || legacy >= 0x1066; }
        bool is10_7orLater() const { return legacy == 0 || legacy >= 0x1070; }
        bool is10_8orLater() const { return legacy == 0 || legacy >= 0x1080; }
        bool is10_9orLater() const { return legacy == 0 || legacy >= 0x1090; }
        bool is10_10orLater() const { return legacy == 0; }
        bool is10_11orLater() const { return legacy == 0 && minor > 10; }
        bool is10_12orLater() const { return legacy == 0 && minor > 11; }
        bool is10_13orLater() const { return legacy == 0 && minor > 12; }
        bool is10_9() const { return legacy >= 0x1090; }
        bool isLower10_6() const { return legacy != 0 && legacy < 0x1060; }
        bool isLower10_7() const { return legacy != 0 && legacy < 0x1070; }
        bool isLower10_8() const { return legacy != 0 && legacy < 0x1080; }
        bool isLower10_9() const { return legacy != 0 && legacy < 0x1090; }
        bool isLower10_10() const { return legacy != 0; }
        bool isLower10_11() const { return minor < 11 || legacy != 0; }
        bool isLower10_12() const { return minor < 12 || legacy != 0; }
        bool isLower10_13() const { return minor < 13 || legacy != 0; }
        // Windows report backing scale changes from 10.7 on.
        bool supportsBackingPropertiesNotification() const { return is10_7orLater(); }
        // The "use as desktop picture" sharing service exists from 10.8 on.
        bool supportsSharing() const { return is10_8orLater(); }

        bool operator==(const SystemVersion&) const = default;
    };

    KVOperatingSystem() = delete;

    // This process's system, probed once from CORVALIS_SYSTEM_VERSION.
    static const SystemVersion& current();

    // The tests above, answered for this process's system.
    static bool is10_4orLater() { return current().is10_4orLater(); }
    static bool is10_5orLater() { return current().is10_5orLater(); }
    static bool is10_6orLater() { return current().is10_6orLater(); }
    static bool is10_6_6orLater() { return current().is10_6_6orLater(); }
    static bool is10_7orLater() { return current().is10_7orLater(); }
    static bool is10_8orLater() { return current().is10_8orLater(); }
    static bool is10_9orLater() { return current().is10_9orLater(); }
    static bool is10_10orLater() { return current().is10_10orLater(); }
    static bool is10_11orLater() { return current().is10_11orLater(); }
    static bool is10_12orLater() { return current().is10_12orLater(); }
    static bool is10_13orLater() { return current().is10_13orLater(); }
    static bool is10_9() { return current().is10_9(); }
    static bool isLower10_6() { return current().isLower10_6(); }
    static bool isLower10_7() { return current().isLower10_7(); }
    static bool isLower10_8() { return current().isLower10_8(); }
    static bool isLower10_9() { return current().isLower10_9(); }
    static bool isLower10_10() { return current().isLower10_10(); }
    static bool isLower10_11() { return current().isLower10_11(); }
    static bool isLower10_12() { return current().isLower10_12(); }
    static bool isLower10_13() { return current().isLower10_13(); }
    static bool supportsBackingPropertiesNotification() {
        return current().supportsBackingPropertiesNotification();
    }
    static bool supportsSharing() { return current().supportsSharing(); }
};

}  // namespace corvalis

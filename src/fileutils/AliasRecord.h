#pragma once
// The bytes kept under "AliasData". Records this system makes are file
// identities: magic "CVAL", a 16-bit version (1), then device and inode (64 bits
// each), the path and the bundle identifier (each a 16-bit length and UTF-8
// bytes), all big-endian, nothing after. Records imported from the original
// platform's Alias Manager ("alis" version 2 or 3) are only read for the POSIX
// path they carry.

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "plist/Value.h"

namespace corvalis {

struct FileIdentity {
    std::string path;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::string bundleIdentifier;  // "" for anything but an application
    // When the file was made (ns since 1970; 0 when the file system does not say):
    // tells the file apart from a later one given its freed inode.
    std::uint64_t birthNs = 0;

    bool operator==(const FileIdentity&) const = default;
};

inline constexpr std::uint16_t kAliasRecordVersion = 1;

// The record of an identity; none when the path or identifier is empty or too long (1000 bytes or more).
std::optional<plist::Data> encodeAliasRecord(const FileIdentity& identity);
// The identity in a record of ours; none for any other bytes.
std::optional<FileIdentity> decodeAliasRecord(std::span<const std::uint8_t> bytes);

// The full POSIX path of a classic alias record (its POSIX path, behind its
// volume's mount point when that is not "/"); none for anything else.
std::optional<std::string> classicAliasPosixPath(std::span<const std::uint8_t> bytes);

}  // namespace corvalis

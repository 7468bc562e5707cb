#pragma once
// Which processor architectures an executable or bundle holds, and how this
// machine and its processes run. Headers are read from the first 512 bytes of a
// file only, and a fat header's count is never trusted beyond what was read.
// Statuses are 0 for success and -1 for any failure; there is no error text.

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "fileutils/KVOperatingSystem.h"
#include "fileutils/MachO.h"

namespace corvalis {

// How many bytes of a file the examination reads, and the fewest it accepts.
inline constexpr std::size_t kExecutableHeaderBytes = 512;
inline constexpr std::size_t kMinimumExecutableHeaderBytes = 32;
// A bundle's executable path must fit this buffer (with its terminating NUL).
inline constexpr std::size_t kMaxExecutablePathBytes = 1024;

// An architecture to look for: a CPU type and subtype.
struct ArchInfo {
    std::int32_t cputype = 0;
    std::int32_t cpusubtype = 0;
    bool operator==(const ArchInfo&) const = default;
};

// The architecture records of header bytes (at most the first 512 are used): one
// record for a thin Mach-O file, the fat records wholly inside the bytes for a fat
// file, none for anything else or for fewer than 32 bytes.
std::vector<macho::FatArch> architecturesFromHeader(std::span<const std::uint8_t> bytes);
// The same for the first 512 bytes of a file; none when it cannot be opened.
std::vector<macho::FatArch> architecturesOfFile(const char* path);

// Known architecture names ("ppc", "i386", "x86_64", "arm64", ...); none for others.
std::optional<ArchInfo> archInfoFromName(std::string_view name);
// The architecture of a `uname` machine name ("x86_64", "i686", "aarch64", ...).
std::optional<ArchInfo> archInfoFromMachine(std::string_view machine);
// This machine's architecture, from `uname`.
std::optional<ArchInfo> localArchInfo();

// The record a loader would choose to run code of `wanted`: an exact CPU type and
// subtype first, then a subtype that `wanted` runs, then, for a 64-bit machine, its
// 32-bit sibling (i386 code on x86_64, 32-bit PowerPC on 64-bit PowerPC). None
// when no record fits.
std::optional<std::size_t> findBestFatArch(const ArchInfo& wanted, std::span<const macho::FatArch> records);

// Examines an executable file. Each flag is optional (null: not wanted):
// runs-on-this-host, holds PowerPC code, holds i386 code.
int ExamineFile(const char* path, bool* runsOnHost, bool* hasPowerPC, bool* hasI386);
// Examines the executable of a bundle (Contents/MacOS/<CFBundleExecutable>).
int ExamineBundle(const char* bundlePath, bool* runsOnHost, bool* hasPowerPC, bool* hasI386);
// A folder is examined as a bundle, a regular file as an executable; anything else fails.
int ExamineArch(const char* path, bool* runsOnHost, bool* hasPowerPC, bool* hasI386);

// The executable of a bundle as its Info.plist names it, when it is a regular
// file whose path fits kMaxExecutablePathBytes.
std::optional<std::string> bundleExecutablePath(const std::string& bundlePath);
// The architecture records of a bundle's executable, or of `path` itself when it
// is a regular file; none when there is no such executable.
std::vector<macho::FatArch> executableArchitectures(const std::string& path);

// Whether process `pid` (0: this process) runs natively. Nothing runs translated
// here, so the answer is always yes with status 0; -1 only for a null out value.
int IsPidNative(pid_t pid, bool* native);
// Whether the processor runs 64-bit code.
bool Is64BitProcessor();
// True when the executable's architectures number at least two and include both CPU types.
bool CheckAppHasArchs(const std::string& bundlePath, std::int32_t cputypeA, std::int32_t cputypeB);
bool IsApp32BitUniversal(const std::string& bundlePath);  // PowerPC and i386
bool IsApp3264BitIntel(const std::string& bundlePath);    // i386 and x86-64
// The Info.plist flag "LSRequiresNativeExecution"; false when absent or not a bundle.
bool RequiresNativeExecution(const std::string& bundlePath);
// Sets the CPU type processes are started with (0: only read) and returns the
// previous one. Processes cannot be started translated here: always -1.
int SetCPUType(int cputype);
// Holds both PowerPC and i386 code and may run translated; never from 10.7 on.
bool IsUniversalCode(const std::string& path);
// The same answer as it would be on `system`.
bool IsUniversalCode(const std::string& path, const KVOperatingSystem::SystemVersion& system);
// A 64-bit processor and an application with both i386 and x86-64 code.
bool CanOpenIn32BitMode(const std::string& path);

}  // namespace corvalis

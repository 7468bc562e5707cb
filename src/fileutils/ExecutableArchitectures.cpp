#include "fileutils/ExecutableArchitectures.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "fileutils/PathLimits.h"
#include "plist/PlistIO.h"

namespace corvalis {

using namespace macho;

namespace {

// Info.plist files are small; a larger file is not one.
constexpr std::size_t kMaxInfoPlistBytes = 1024 * 1024;

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isRegularFile(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// Contents/Info.plist of any bundle (not only applications), as a dictionary.
std::optional<plist::Dictionary> readInfoDictionary(const std::string& bundlePath) {
    std::string file = withoutTrailingSlashes(bundlePath) + "/Contents/Info.plist";
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0 || !S_ISREG(info.st_mode) ||
        static_cast<std::uintmax_t>(info.st_size) > kMaxInfoPlistBytes)
        return std::nullopt;
    std::ifstream in(file, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() > kMaxInfoPlistBytes) return std::nullopt;  // it grew since
    plist::ParseResult parsed = plist::parse(std::string_view(bytes));
    if (!parsed.ok()) return std::nullopt;
    return plist::asDictionary(parsed.value);
}

// Reads up to `buffer.size()` bytes, going on after short reads; -1 on error.
ssize_t readFully(int fd, std::span<std::uint8_t> buffer) {
    std::size_t total = 0;
    while (total < buffer.size()) {
        ssize_t got = ::read(fd, buffer.data() + total, buffer.size() - total);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        total += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(total);
}

// Whether a machine of `machineSubtype` runs code built for `codeSubtype` of
// the same CPU type (both without capability bits). Equal subtypes are handled
// before this is asked.
bool runsSubtype(std::int32_t cputype, std::int32_t machineSubtype, std::int32_t codeSubtype) {
    switch (cputype) {
    case CPU_TYPE_I386:
        // Every 32-bit Intel subtype runs on the processors this code meets.
        return true;
    case CPU_TYPE_X86_64:
        // Haswell code needs a Haswell machine; generic code runs anywhere.
        if (codeSubtype == CPU_SUBTYPE_X86_64_H) return machineSubtype == CPU_SUBTYPE_X86_64_H;
        return codeSubtype == CPU_SUBTYPE_X86_64_ALL || codeSubtype == CPU_SUBTYPE_X86_ARCH1;
    case CPU_TYPE_POWERPC:
        // Asking for "ppc" means any PowerPC code; a G5 runs the older subtypes.
        return machineSubtype == CPU_SUBTYPE_POWERPC_ALL || codeSubtype == CPU_SUBTYPE_POWERPC_ALL ||
               machineSubtype == CPU_SUBTYPE_POWERPC_970;
    case CPU_TYPE_ARM64:
        if (codeSubtype == CPU_SUBTYPE_ARM64E) return machineSubtype == CPU_SUBTYPE_ARM64E;
        return codeSubtype == CPU_SUBTYPE_ARM64_ALL || codeSubtype == CPU_SUBTYPE_ARM64_V8;
    default:
        // Elsewhere (PowerPC64, 32-bit ARM, ...) the generic subtype is 0 on either side.
        return machineSubtype == 0 || codeSubtype == 0;
    }
}

// Sets a wanted flag (null: not wanted) to whether the chooser picks a record for `wanted`.
void answer(bool* flag, const std::optional<ArchInfo>& wanted, std::span<const FatArch> records) {
    if (flag) *flag = wanted && !records.empty() && findBestFatArch(*wanted, records).has_value();
}

// The records of a file's first 512 bytes; none when it cannot be opened. A file
// that opens but cannot be read has no records, like one that is too short.
std::optional<std::vector<FatArch>> readHeaderRecords(const char* path) {
    if (!path) return std::nullopt;
    // Non-blocking, so that a named pipe given by mistake cannot hang the open.
    int fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return std::nullopt;
    std::array<std::uint8_t, kExecutableHeaderBytes> buffer{};
    ssize_t got = readFully(fd, buffer);
    ::close(fd);
    return architecturesFromHeader(std::span(buffer.data(), got < 0 ? 0 : static_cast<std::size_t>(got)));
}

bool cpuFlagsHaveLongMode() {
    std::ifstream cpuinfo("/proc/cpuinfo");
    std::string line;
    while (std::getline(cpuinfo, line)) {
        if (line.rfind("flags", 0) != 0) continue;
        line += ' ';
        return line.find(" lm ") != std::string::npos;
    }
    return false;
}

}  // namespace

std::vector<FatArch> architecturesFromHeader(std::span<const std::uint8_t> bytes) {
    std::size_t length = std::min(bytes.size(), kExecutableHeaderBytes);
    if (length < kMinimumExecutableHeaderBytes) return {};

    // The header as 32-bit words in this machine's order; the file's order is
    // told by how the magic reads, and a foreign order is swapped word by word.
    std::array<std::uint32_t, kExecutableHeaderBytes / 4> words{};
    std::memcpy(words.data(), bytes.data(), length);
    std::size_t wordCount = length / 4;
    switch (words[0]) {
    case MH_CIGAM:
    case MH_CIGAM_64:
    case FAT_CIGAM:
        std::transform(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(wordCount), words.begin(),
                       swapWord);
        break;
    default: break;
    }

    switch (words[0]) {
    case MH_MAGIC:
    case MH_MAGIC_64:
        return {FatArch{static_cast<std::int32_t>(words[1]), static_cast<std::int32_t>(words[2]), 0, 0, 0}};
    case FAT_MAGIC: {
        // Only records wholly inside the bytes read, whatever the header claims.
        std::size_t fits = (length - kFatHeaderBytes) / kFatArchBytes;
        std::size_t count = std::min<std::size_t>(words[1], fits);
        std::vector<FatArch> records;
        records.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t* record = &words[kFatHeaderBytes / 4 + i * (kFatArchBytes / 4)];
            records.push_back({static_cast<std::int32_t>(record[0]), static_cast<std::int32_t>(record[1]), record[2],
                               record[3], record[4]});
        }
        return records;
    }
    default: return {};
    }
}

std::vector<FatArch> architecturesOfFile(const char* path) {
    return readHeaderRecords(path).value_or(std::vector<FatArch>{});
}

std::optional<ArchInfo> archInfoFromName(std::string_view name) {
    struct Named {
        std::string_view name;
        ArchInfo info;
    };
    static constexpr Named kNames[] = {
        {"ppc", {CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_ALL}},
        {"ppc601", {CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_601}},
        {"ppc750", {CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_750}},
        {"ppc7400", {CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_7400}},
        {"ppc7450", {CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_7450}},
        {"ppc970", {CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_970}},
        {"ppc64", {CPU_TYPE_POWERPC64, CPU_SUBTYPE_POWERPC_ALL}},
        {"i386", {CPU_TYPE_I386, CPU_SUBTYPE_I386_ALL}},
        {"i486", {CPU_TYPE_I386, CPU_SUBTYPE_486}},
        {"pentium", {CPU_TYPE_I386, CPU_SUBTYPE_PENT}},
        {"x86_64", {CPU_TYPE_X86_64, CPU_SUBTYPE_X86_64_ALL}},
        {"x86_64h", {CPU_TYPE_X86_64, CPU_SUBTYPE_X86_64_H}},
        {"arm", {CPU_TYPE_ARM, CPU_SUBTYPE_ARM_ALL}},
        {"armv6", {CPU_TYPE_ARM, CPU_SUBTYPE_ARM_V6}},
        {"armv7", {CPU_TYPE_ARM, CPU_SUBTYPE_ARM_V7}},
        {"arm64", {CPU_TYPE_ARM64, CPU_SUBTYPE_ARM64_ALL}},
        {"arm64e", {CPU_TYPE_ARM64, CPU_SUBTYPE_ARM64E}},
    };
    for (const Named& entry : kNames)
        if (entry.name == name) return entry.info;
    return std::nullopt;
}

std::optional<ArchInfo> archInfoFromMachine(std::string_view machine) {
    if (machine == "x86_64" || machine == "amd64") return archInfoFromName("x86_64");
    if (machine == "i386" || machine == "i486" || machine == "i586" || machine == "i686" || machine == "i86pc")
        return archInfoFromName("i386");
    if (machine == "aarch64" || machine == "arm64" || machine == "aarch64_be") return archInfoFromName("arm64");
    if (machine.starts_with("armv7")) return archInfoFromName("armv7");
    if (machine.starts_with("armv6")) return archInfoFromName("armv6");
    if (machine.starts_with("arm")) return archInfoFromName("arm");
    if (machine.starts_with("ppc64")) return archInfoFromName("ppc64");
    if (machine == "ppc" || machine == "powerpc") return archInfoFromName("ppc");
    return std::nullopt;
}

std::optional<ArchInfo> localArchInfo() {
    static const std::optional<ArchInfo> local = []() -> std::optional<ArchInfo> {
        struct utsname names {};
        if (::uname(&names) != 0) return std::nullopt;
        return archInfoFromMachine(names.machine);
    }();
    return local;
}

std::optional<std::size_t> findBestFatArch(const ArchInfo& wanted, std::span<const FatArch> records) {
    const std::int32_t wantedSubtype = subtypeWithoutCapabilities(wanted.cpusubtype);
    for (std::size_t i = 0; i < records.size(); ++i)
        if (records[i].cputype == wanted.cputype && subtypeWithoutCapabilities(records[i].cpusubtype) == wantedSubtype)
            return i;
    for (std::size_t i = 0; i < records.size(); ++i)
        if (records[i].cputype == wanted.cputype &&
            runsSubtype(wanted.cputype, wantedSubtype, subtypeWithoutCapabilities(records[i].cpusubtype)))
            return i;
    // A 64-bit machine of these families also runs its 32-bit code.
    if (wanted.cputype == CPU_TYPE_X86_64) return findBestFatArch({CPU_TYPE_I386, CPU_SUBTYPE_I386_ALL}, records);
    if (wanted.cputype == CPU_TYPE_POWERPC64)
        return findBestFatArch({CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_ALL}, records);
    return std::nullopt;
}

int ExamineFile(const char* path, bool* runsOnHost, bool* hasPowerPC, bool* hasI386) {
    auto records = readHeaderRecords(path);
    if (!records) return -1;
    answer(runsOnHost, localArchInfo(), *records);
    answer(hasPowerPC, archInfoFromName("ppc"), *records);
    answer(hasI386, archInfoFromName("i386"), *records);
    return records->empty() ? -1 : 0;
}

std::optional<std::string> bundleExecutablePath(const std::string& bundlePath) {
    if (bundlePath.empty() || !isDirectory(bundlePath)) return std::nullopt;
    auto info = readInfoDictionary(bundlePath);
    if (!info) return std::nullopt;
    const std::string* name = (*info)["CFBundleExecutable"].string();
    // The executable lives in Contents/MacOS; a name that leads elsewhere is refused.
    if (!name || name->empty() || *name == "." || *name == ".." || name->find('/') != std::string::npos ||
        name->find('\0') != std::string::npos)
        return std::nullopt;
    std::string executable = withoutTrailingSlashes(bundlePath) + "/Contents/MacOS/" + *name;
    if (executable.size() >= kMaxExecutablePathBytes || !isRegularFile(executable)) return std::nullopt;
    return executable;
}

int ExamineBundle(const char* bundlePath, bool* runsOnHost, bool* hasPowerPC, bool* hasI386) {
    if (!bundlePath) return -1;
    auto executable = bundleExecutablePath(bundlePath);
    if (!executable) return -1;
    return ExamineFile(executable->c_str(), runsOnHost, hasPowerPC, hasI386);
}

int ExamineArch(const char* path, bool* runsOnHost, bool* hasPowerPC, bool* hasI386) {
    if (!path) return -1;
    struct stat info {};
    if (::stat(path, &info) != 0) return -1;
    if (S_ISDIR(info.st_mode)) return ExamineBundle(path, runsOnHost, hasPowerPC, hasI386);
    if (S_ISREG(info.st_mode)) return ExamineFile(path, runsOnHost, hasPowerPC, hasI386);
    return -1;
}

std::vector<FatArch> executableArchitectures(const std::string& path) {
    if (isDirectory(path)) {
        auto executable = bundleExecutablePath(path);
        return executable ? architecturesOfFile(executable->c_str()) : std::vector<FatArch>{};
    }
    return isRegularFile(path) ? architecturesOfFile(path.c_str()) : std::vector<FatArch>{};
}

int IsPidNative(pid_t, bool* native) {
    if (!native) return -1;
    // There is no translation layer to ask, as on a system without the
    // "sysctl.proc_native" query: every process runs natively.
    *native = true;
    return 0;
}

bool Is64BitProcessor() {
    static const bool capable = [] {
        auto local = localArchInfo();
        if (local && (local->cputype & CPU_ARCH_ABI64)) return true;
        // A 32-bit kernel on a 64-bit Intel processor still reports long mode.
        return local && local->cputype == CPU_TYPE_I386 && cpuFlagsHaveLongMode();
    }();
    return capable;
}

bool CheckAppHasArchs(const std::string& bundlePath, std::int32_t cputypeA, std::int32_t cputypeB) {
    std::vector<FatArch> records = executableArchitectures(bundlePath);
    if (records.size() < 2) return false;
    auto holds = [&records](std::int32_t cputype) {
        return std::any_of(records.begin(), records.end(),
                           [cputype](const FatArch& record) { return record.cputype == cputype; });
    };
    return holds(cputypeA) && holds(cputypeB);
}

bool IsApp32BitUniversal(const std::string& bundlePath) {
    return CheckAppHasArchs(bundlePath, CPU_TYPE_I386, CPU_TYPE_POWERPC);
}

bool IsApp3264BitIntel(const std::string& bundlePath) {
    return CheckAppHasArchs(bundlePath, CPU_TYPE_I386, CPU_TYPE_X86_64);
}

bool RequiresNativeExecution(const std::string& bundlePath) {
    if (bundlePath.empty() || !isDirectory(bundlePath)) return false;
    auto info = readInfoDictionary(bundlePath);
    if (!info) return false;
    return (*info)["LSRequiresNativeExecution"].toBool().value_or(false);
}

int SetCPUType(int) {
    // Processes cannot be told to start under another CPU type here.
    return -1;
}

bool IsUniversalCode(const std::string& path, const KVOperatingSystem::SystemVersion& system) {
    if (system.is10_7orLater()) return false;
    if (!isPathWithinLimit(path) || !fileExistsAtPath(path)) return false;
    bool hasPowerPC = false;
    bool hasI386 = false;
    if (ExamineArch(path.c_str(), nullptr, &hasPowerPC, &hasI386) != 0) return false;
    // Code that demands native execution cannot be run translated.
    return hasPowerPC && hasI386 && !RequiresNativeExecution(path);
}

bool IsUniversalCode(const std::string& path) {
    return IsUniversalCode(path, KVOperatingSystem::current());
}

bool CanOpenIn32BitMode(const std::string& path) {
    if (!Is64BitProcessor() || !isPathWithinLimit(path) || !fileExistsAtPath(path)) return false;
    return IsApp3264BitIntel(path);
}

}  // namespace corvalis

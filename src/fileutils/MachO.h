#pragma once
// The Mach-O and fat (universal) header formats: every magic number, CPU type
// and subtype the examination knows, named once, and the one byte swap they need.
// Values are those of the executable format; names follow its usual spelling.

#include <cstdint>

namespace corvalis::macho {

// Magic numbers as they read when the header's byte order is the reader's.
// A CIGAM is the same magic read in the opposite order.
inline constexpr std::uint32_t MH_MAGIC = 0xFEEDFACE;     // 32-bit Mach-O
inline constexpr std::uint32_t MH_CIGAM = 0xCEFAEDFE;
inline constexpr std::uint32_t MH_MAGIC_64 = 0xFEEDFACF;  // 64-bit Mach-O
inline constexpr std::uint32_t MH_CIGAM_64 = 0xCFFAEDFE;
inline constexpr std::uint32_t FAT_MAGIC = 0xCAFEBABE;    // fat header, big-endian on disk
inline constexpr std::uint32_t FAT_CIGAM = 0xBEBAFECA;

// CPU types.
inline constexpr std::int32_t CPU_ARCH_MASK = static_cast<std::int32_t>(0xFF000000);
inline constexpr std::int32_t CPU_ARCH_ABI64 = 0x01000000;
inline constexpr std::int32_t CPU_ARCH_ABI64_32 = 0x02000000;
inline constexpr std::int32_t CPU_TYPE_ANY = -1;
inline constexpr std::int32_t CPU_TYPE_VAX = 1;
inline constexpr std::int32_t CPU_TYPE_MC680x0 = 6;
inline constexpr std::int32_t CPU_TYPE_X86 = 7;
inline constexpr std::int32_t CPU_TYPE_I386 = CPU_TYPE_X86;
inline constexpr std::int32_t CPU_TYPE_X86_64 = CPU_TYPE_X86 | CPU_ARCH_ABI64;  // 0x01000007
inline constexpr std::int32_t CPU_TYPE_MC98000 = 10;
inline constexpr std::int32_t CPU_TYPE_HPPA = 11;
inline constexpr std::int32_t CPU_TYPE_ARM = 12;
inline constexpr std::int32_t CPU_TYPE_ARM64 = CPU_TYPE_ARM | CPU_ARCH_ABI64;
inline constexpr std::int32_t CPU_TYPE_ARM64_32 = CPU_TYPE_ARM | CPU_ARCH_ABI64_32;
inline constexpr std::int32_t CPU_TYPE_MC88000 = 13;
inline constexpr std::int32_t CPU_TYPE_SPARC = 14;
inline constexpr std::int32_t CPU_TYPE_I860 = 15;
inline constexpr std::int32_t CPU_TYPE_POWERPC = 18;
inline constexpr std::int32_t CPU_TYPE_POWERPC64 = CPU_TYPE_POWERPC | CPU_ARCH_ABI64;

// CPU subtypes. The high byte carries capability bits, not the subtype.
inline constexpr std::int32_t CPU_SUBTYPE_MASK = static_cast<std::int32_t>(0xFF000000);
inline constexpr std::int32_t CPU_SUBTYPE_LIB64 = static_cast<std::int32_t>(0x80000000);
inline constexpr std::int32_t CPU_SUBTYPE_MULTIPLE = -1;
inline constexpr std::int32_t CPU_SUBTYPE_I386_ALL = 3;
inline constexpr std::int32_t CPU_SUBTYPE_486 = 4;
inline constexpr std::int32_t CPU_SUBTYPE_PENT = 5;
inline constexpr std::int32_t CPU_SUBTYPE_X86_64_ALL = 3;
inline constexpr std::int32_t CPU_SUBTYPE_X86_ARCH1 = 4;
inline constexpr std::int32_t CPU_SUBTYPE_X86_64_H = 8;  // Haswell and later
inline constexpr std::int32_t CPU_SUBTYPE_POWERPC_ALL = 0;
inline constexpr std::int32_t CPU_SUBTYPE_POWERPC_601 = 1;
inline constexpr std::int32_t CPU_SUBTYPE_POWERPC_750 = 9;
inline constexpr std::int32_t CPU_SUBTYPE_POWERPC_7400 = 10;
inline constexpr std::int32_t CPU_SUBTYPE_POWERPC_7450 = 11;
inline constexpr std::int32_t CPU_SUBTYPE_POWERPC_970 = 100;
inline constexpr std::int32_t CPU_SUBTYPE_ARM_ALL = 0;
inline constexpr std::int32_t CPU_SUBTYPE_ARM_V6 = 6;
inline constexpr std::int32_t CPU_SUBTYPE_ARM_V7 = 9;
inline constexpr std::int32_t CPU_SUBTYPE_ARM64_ALL = 0;
inline constexpr std::int32_t CPU_SUBTYPE_ARM64_V8 = 1;
inline constexpr std::int32_t CPU_SUBTYPE_ARM64E = 2;

// Layout of the headers, in bytes.
inline constexpr unsigned kFatHeaderBytes = 8;    // magic, number of architectures
inline constexpr unsigned kFatArchBytes = 20;     // cputype, cpusubtype, offset, size, align

// A fat record, or the one architecture of a thin file.
struct FatArch {
    std::int32_t cputype = 0;
    std::int32_t cpusubtype = 0;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    std::uint32_t align = 0;

    bool operator==(const FatArch&) const = default;
};

// The subtype without its capability bits.
constexpr std::int32_t subtypeWithoutCapabilities(std::int32_t cpusubtype) {
    return cpusubtype & ~CPU_SUBTYPE_MASK;
}

// The only byte swap of the format: whole 32-bit words.
constexpr std::uint32_t swapWord(std::uint32_t word) {
    return ((word & 0x000000FFu) << 24) | ((word & 0x0000FF00u) << 8) |
           ((word & 0x00FF0000u) >> 8) | ((word & 0xFF000000u) >> 24);
}

}  // namespace corvalis::macho

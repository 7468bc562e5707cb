#include "fileutils/ExecutableArchitectures.h"

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include <gtest/gtest.h>

#include "plist/PlistIO.h"
#include "support/TestSupport.h"

namespace corvalis {
namespace {

namespace fs = std::filesystem;
using namespace macho;
using Bytes = std::vector<std::uint8_t>;
using Records = std::vector<FatArch>;

// 32-bit words in either byte order, padded with zeros to `size` bytes.
Bytes words(std::vector<std::uint32_t> values, bool bigEndian, std::size_t size = 64) {
    Bytes bytes;
    for (std::uint32_t value : values)
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (bigEndian ? 24 - 8 * i : 8 * i)));
    bytes.resize(std::max(bytes.size(), size), 0);
    return bytes;
}

// A fat file as on disk (big-endian) with two records, claiming `claimed`.
Bytes fat(std::int32_t cputypeA, std::int32_t cputypeB, std::uint32_t claimed, std::size_t size) {
    return words({FAT_MAGIC, claimed, std::uint32_t(cputypeA), 0, 4096, 28, 12, std::uint32_t(cputypeB), 3, 8192, 28, 12},
                 true, size);
}

std::string machine() {
    struct utsname names {};
    ::uname(&names);
    return names.machine;
}

// Files as tools write them are compared with llvm-objdump by files_commands.sh; here, what no tool writes.
TEST(ExecutableHeader, ThinAndFatHeadersInEitherByteOrder) {
    EXPECT_EQ(architecturesFromHeader(fat(CPU_TYPE_POWERPC, CPU_TYPE_I386, 2, 512)),
              (Records{{CPU_TYPE_POWERPC, 0, 4096, 28, 12}, {CPU_TYPE_I386, 3, 8192, 28, 12}}));
    // A fat header already in this machine's order is used as it stands.
    EXPECT_EQ(architecturesFromHeader(words({FAT_MAGIC, 1, CPU_TYPE_X86_64, 3, 0, 0, 0}, false)).size(), 1u);
}

TEST(ExecutableHeader, OnlyWhatWasReadIsTrusted) {
    // 40 claimed: only the (512 - 8) / 20 = 25 records inside the first 512 bytes, however long the file.
    EXPECT_EQ(architecturesFromHeader(fat(CPU_TYPE_I386, CPU_TYPE_I386, 40, 512)).size(), 25u);
    EXPECT_EQ(architecturesFromHeader(fat(CPU_TYPE_I386, CPU_TYPE_I386, 40, 4096)).size(), 25u);
    EXPECT_EQ(architecturesFromHeader(fat(CPU_TYPE_I386, CPU_TYPE_I386, 40, 100)).size(), 4u);
    EXPECT_TRUE(architecturesFromHeader(fat(CPU_TYPE_I386, CPU_TYPE_I386, 0, 64)).empty());
    Bytes thin = words({MH_MAGIC, CPU_TYPE_I386, 3}, false);
    EXPECT_TRUE(architecturesFromHeader(std::span(thin.data(), 31)).empty());
    EXPECT_EQ(architecturesFromHeader(std::span(thin.data(), 32)).size(), 1u);
    EXPECT_TRUE(architecturesFromHeader(words({0x464C457F, 0x00010102}, false)).empty());  // ELF
}

TEST(BestFatArch, ExactThenCompatibleThenThirtyTwoBitSibling) {
    const ArchInfo x86_64 = *archInfoFromName("x86_64");
    EXPECT_EQ(findBestFatArch(x86_64, Records{{CPU_TYPE_I386, 3}, {CPU_TYPE_X86_64, 3}}), 1u);
    EXPECT_EQ(findBestFatArch(x86_64, Records{{CPU_TYPE_X86_64, 3 | CPU_SUBTYPE_LIB64}}), 0u);  // capability bits
    EXPECT_EQ(findBestFatArch(x86_64, Records{{CPU_TYPE_ARM64, 0}, {CPU_TYPE_I386, CPU_SUBTYPE_PENT}}), 1u);
    EXPECT_FALSE(findBestFatArch(x86_64, Records{{CPU_TYPE_X86_64, CPU_SUBTYPE_X86_64_H}}));  // Haswell-only code
    EXPECT_FALSE(findBestFatArch(*archInfoFromName("i386"), Records{{CPU_TYPE_X86_64, 3}}));
    EXPECT_EQ(findBestFatArch(*archInfoFromName("ppc"), Records{{CPU_TYPE_POWERPC, CPU_SUBTYPE_POWERPC_970}}), 0u);
    EXPECT_FALSE(findBestFatArch(*archInfoFromName("arm64"), Records{{CPU_TYPE_ARM64, CPU_SUBTYPE_ARM64E}}));
    EXPECT_EQ(archInfoFromMachine("i686"), archInfoFromName("i386"));
    EXPECT_EQ(archInfoFromMachine("aarch64"), archInfoFromName("arm64"));
    EXPECT_FALSE(archInfoFromMachine("riscv64"));
    EXPECT_EQ(localArchInfo(), archInfoFromMachine(machine()));
}

// Objects compiled here (clang), fat files joined by llvm-lipo, and byte-built
// files for what no tool here makes.
class ExecutableFiles : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = std::make_unique<test::TempDir>();
        std::string script = std::string(CORVALIS_SOURCE_DIR) + "/tests/scripts/make_macho_fixtures.sh '" +
                             folder_->path().string() + "'";
        toolsWork_ = std::system(script.c_str()) == 0;
        auto write = [](const char* name, const Bytes& bytes) {
            test::writeFile(folder_->path() / name, std::string(bytes.begin(), bytes.end()));
        };
        write("ppc", words({MH_MAGIC, CPU_TYPE_POWERPC, 0, 2, 0, 0, 0}, true));
        write("fat-ppc-i386", fat(CPU_TYPE_POWERPC, CPU_TYPE_I386, 2, 512));
        write("short", words({MH_MAGIC, CPU_TYPE_I386, 3}, false, 0));
    }
    static void TearDownTestSuite() { folder_.reset(); }
    void SetUp() override {
        if (!toolsWork_) GTEST_SKIP() << "clang or llvm-lipo could not make the Mach-O fixtures";
    }

    static std::string file(const std::string& name) { return (folder_->path() / name).string(); }
    // A bundle whose Info.plist says `info` and whose Contents/MacOS/<executable> copies fixture `source`.
    static std::string bundle(const std::string& name, const plist::Dictionary& info, const std::string& source = "") {
        fs::path root = folder_->path() / name;
        fs::create_directories(root / "Contents" / "MacOS");
        test::writeFile(root / "Contents" / "Info.plist", plist::toXml(info));
        if (const std::string* executable = info["CFBundleExecutable"].string(); executable && !source.empty())
            fs::copy_file(file(source), root / "Contents" / "MacOS" / *executable, fs::copy_options::overwrite_existing);
        return root.string();
    }

    static inline std::unique_ptr<test::TempDir> folder_;
    static inline bool toolsWork_ = false;
};

// "status host ppc i386" as ExamineArch answers, flags preset to 1 to see them cleared.
std::string examine(const std::string& path) {
    bool host = true, ppc = true, i386 = true;
    int status = ExamineArch(path.c_str(), &host, &ppc, &i386);
    return std::to_string(status) + " " + std::to_string(host) + std::to_string(ppc) + std::to_string(i386);
}

// The compiled files are checked against llvm-objdump by files_commands.sh; here, the byte-built ones.
TEST_F(ExecutableFiles, FlagsOfByteBuiltFiles) {
    // Host answers as on a 64-bit Intel machine; on another machine the host flag is masked.
    const bool intel = machine() == "x86_64";
    auto masked = [intel](std::string answer) { return intel ? answer : answer.replace(answer.find(' ') + 1, 1, "?"); };
    EXPECT_EQ(masked(examine(file("fat-ppc-i386"))), masked("0 111"));
    EXPECT_EQ(examine(file("short")), "-1 000");
    EXPECT_EQ(ExamineFile(file("ppc").c_str(), nullptr, nullptr, nullptr), 0);  // no flag wanted
    EXPECT_EQ(ExamineFile(file("missing").c_str(), nullptr, nullptr, nullptr), -1);
}

TEST_F(ExecutableFiles, BundlesAreExaminedThroughTheirInfoPlist) {
    std::string app = bundle("Tool.app", {{"CFBundleExecutable", "Tool"}}, "fat-intel.o");
    EXPECT_EQ(examine(app).substr(0, 2), "0 ");
    EXPECT_EQ(bundleExecutablePath(app + "/"), app + "/Contents/MacOS/Tool");
    EXPECT_EQ(examine(bundle("Filter.plugin", {{"CFBundleExecutable", "Filter"}}, "ppc")), "0 010");
    for (const std::string& broken : {bundle("Missing.app", {{"CFBundleExecutable", "Gone"}}),
                                      bundle("Unnamed.app", {{"CFBundleName", "Unnamed"}}, "x86_64.o"),
                                      bundle("Escape.app", {{"CFBundleExecutable", "../Info.plist"}})})
        EXPECT_EQ(examine(broken).substr(0, 2), "-1") << broken;
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);  // neither file nor folder
    EXPECT_EQ(examine(file("pipe")).substr(0, 2), "-1");
}

TEST_F(ExecutableFiles, TwoArchitecturesAndUniversalCode) {
    std::string intel = bundle("Intel.app", {{"CFBundleExecutable", "I"}}, "fat-intel.o");
    std::string universal = bundle("Universal.app", {{"CFBundleExecutable", "U"}}, "fat-ppc-i386");
    std::string single = bundle("Single.app", {{"CFBundleExecutable", "S"}}, "i386.o");
    std::string native = bundle("Native.app", {{"CFBundleExecutable", "N"}, {"LSRequiresNativeExecution", true}},
                                "fat-ppc-i386");
    EXPECT_TRUE(IsApp3264BitIntel(intel));
    EXPECT_FALSE(IsApp32BitUniversal(intel));
    EXPECT_TRUE(IsApp32BitUniversal(universal));
    EXPECT_FALSE(CheckAppHasArchs(single, CPU_TYPE_I386, CPU_TYPE_I386));  // one architecture is never enough
    EXPECT_EQ(CanOpenIn32BitMode(intel), Is64BitProcessor());
    EXPECT_FALSE(CanOpenIn32BitMode(single));

    auto leopard = KVOperatingSystem::SystemVersion::probe("10.5.8");
    EXPECT_TRUE(IsUniversalCode(universal, leopard));
    EXPECT_FALSE(IsUniversalCode(universal, KVOperatingSystem::SystemVersion::probe("10.7")));
    EXPECT_FALSE(IsUniversalCode(universal));  // this host counts as the newest system
    EXPECT_FALSE(IsUniversalCode(native, leopard));
    EXPECT_FALSE(IsUniversalCode(intel, leopard));
}

TEST(ProcessArchitecture, EveryProcessIsNative) {
    bool native = false;
    EXPECT_EQ(IsPidNative(::getpid(), &native), 0);
    EXPECT_TRUE(native);
    EXPECT_EQ(IsPidNative(0, nullptr), -1);
    EXPECT_EQ(Is64BitProcessor(), machine() == "x86_64" || machine() == "aarch64" || machine().starts_with("ppc64"));
}

}  // namespace
}  // namespace corvalis

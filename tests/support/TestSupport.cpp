#include "support/TestSupport.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace corvalis::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "corvalis-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream contents;
    contents << in.rdbuf();
    return contents.str();
}

void writeFile(const std::filesystem::path& path, const std::string& contents) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << contents;
}

}  // namespace corvalis::test

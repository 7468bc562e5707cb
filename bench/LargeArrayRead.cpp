// Reads a domain file through the store, as the tool and the window do, and
// prints the median time of seven reads in milliseconds: the reading side of a
// domain holding one very large array, beside plistutil converting the same file.
// Usage: corvalis-bench-read FILE

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "platform/FileDomainStore.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: corvalis-bench-read FILE\n");
        return 2;
    }
    fs::path file = fs::absolute(argv[1]);
    std::string name = file.stem().string();
    std::vector<double> times;
    for (int run = 0; run < 7; ++run) {
        corvalis::FileDomainStore store(file.parent_path());
        auto start = std::chrono::steady_clock::now();
        auto domain = store.persistentDomainForName(name);
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        if (!domain) {
            std::fprintf(stderr, "corvalis-bench-read: %s could not be read\n", file.c_str());
            return 1;
        }
    }
    std::sort(times.begin(), times.end());
    std::printf("%.2f\n", times[times.size() / 2]);
}

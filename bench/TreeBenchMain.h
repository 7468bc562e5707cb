#pragma once
// main() of the benchmarks that read a generated tree: the tree's path comes
// first, Google Benchmark's own options after it.

#include <iostream>
#include <string>

#include <benchmark/benchmark.h>

inline int runTreeBenchmarks(int argc, char** argv, const char* program, std::string& tree) {
    if (argc < 2 || argv[1][0] == '-') {
        std::cerr << "usage: " << program << " TREE [benchmark options]\n";
        return 2;
    }
    tree = argv[1];
    argv[1] = argv[0];
    int rest = argc - 1;
    benchmark::Initialize(&rest, argv + 1);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

#include <benchmark/benchmark.h>

#include "velk32.h"

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::AddCustomContext("version", VELK_VERSION);
    benchmark::AddCustomContext("compiler", VELK_BENCH_COMPILER);
    return benchmark::RunSpecifiedBenchmarks() == 0 ? 1 : 0;
}

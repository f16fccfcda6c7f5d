// Classes: loading their definitions.
#include <malloc.h>
#include <sys/resource.h>

#include <benchmark/benchmark.h>

#include "bench/sample.h"

namespace
{

void SetSize(benchmark::State &state, const Definitions &definitions, size_t items)
{
    state.counters["bytes"] = static_cast<double>(definitions.bytes);
    state.counters["items"] = static_cast<double>(items);
}

void LoadClass(benchmark::State &state, const Definitions &definitions, size_t items)
{
    for (auto round : state) {
        ConfigEngine *engine;
        VelkDiscardConfig(definitions.Open(&engine));
        VelkCloseConfigEngine(engine);
    }
    state.counters["bytes"] = static_cast<double>(definitions.bytes);
    state.counters["items"] = static_cast<double>(items);
}

Definitions KeysAndOptions(uint32_t keyCount)
{
    std::string keys, options;
    for (uint32_t n = 0; n < keyCount; ++n)
        keys += KeySection(n);
    for (uint32_t n = 0; n < keyCount / 2; ++n)
        options += OptionSection(n);
    return {keys, options};
}

// A profile file of one megabyte whose sections are keys.
void LoadKeys(benchmark::State &state)
{
    const ProfileText keys(Shape::FewItemsASection, size_t{1} << 20);
    LoadClass(state, {keys.text, ""}, keys.places.size());
}

void LoadKeysAndOptions(benchmark::State &state)
{
    const auto keyCount = static_cast<uint32_t>(state.range(0));
    LoadClass(state, KeysAndOptions(keyCount), keyCount + keyCount / 2);
}

int64_t PeakBytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return int64_t{usage.ru_maxrss} * 1024;
}

// The memory of a load at its peak, and of the class that stays; both only mean something in a process that
// has done nothing else.
void ClassMemory(benchmark::State &state)
{
    const auto keyCount = static_cast<uint32_t>(state.range(0));
    const Definitions definitions = KeysAndOptions(keyCount);
    for (auto round : state) {
        const int64_t peakBefore = PeakBytes();
        const size_t heldBefore = mallinfo2().uordblks;
        ConfigEngine *engine;
        Config *config = definitions.Open(&engine);
        state.counters["peak"] = static_cast<double>(PeakBytes() - peakBefore);
        state.counters["held"] = static_cast<double>(mallinfo2().uordblks - heldBefore);
        VelkDiscardConfig(config);
        VelkCloseConfigEngine(engine);
    }
    SetSize(state, definitions, keyCount + keyCount / 2);
}

} // namespace

BENCHMARK(LoadKeys);
BENCHMARK(LoadKeysAndOptions)->Arg(10000)->Arg(100000);
BENCHMARK(ClassMemory)->Arg(100000)->Iterations(1);

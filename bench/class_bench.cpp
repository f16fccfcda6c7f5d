// Classes: loading their definitions.
#include <fstream>

#include <malloc.h>

#include <benchmark/benchmark.h>

#include "bench/sample.h"

namespace
{

void SetSize(benchmark::State &state, const DefinitionFiles &definitions, size_t items)
{
    state.counters["bytes"] = static_cast<double>(definitions.bytes);
    state.counters["items"] = static_cast<double>(items);
}

void LoadClass(benchmark::State &state, const DefinitionFiles &definitions, size_t items)
{
    for ([[maybe_unused]] auto round : state) {
        ConfigEngine *engine;
        VelkDiscardConfig(definitions.Open(&engine));
        VelkCloseConfigEngine(engine);
    }
    SetSize(state, definitions, items);
}

DefinitionFiles KeysAndOptions(uint32_t keyCount)
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

// A line of what the kernel knows of this process, in bytes.
int64_t StatusBytes(const std::string &name)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == name + ":") {
            int64_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    return 0;
}

// Bytes in blocks that are not freed, those with pages of their own too.
size_t HeldBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// What a load takes at its peak, and what of it the class keeps.
void ClassMemory(benchmark::State &state)
{
    const auto keyCount = static_cast<uint32_t>(state.range(0));
    const DefinitionFiles definitions = KeysAndOptions(keyCount);
    for ([[maybe_unused]] auto round : state) {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
        const int64_t residentBefore = StatusBytes("VmRSS");
        const size_t heldBefore = HeldBytes();
        ConfigEngine *engine;
        Config *config = definitions.Open(&engine);
        state.counters["peak"] = static_cast<double>(StatusBytes("VmHWM") - residentBefore);
        state.counters["held"] = static_cast<double>(HeldBytes() - heldBefore);
        VelkDiscardConfig(config);
        VelkCloseConfigEngine(engine);
    }
    SetSize(state, definitions, keyCount + keyCount / 2);
}

} // namespace

BENCHMARK(LoadKeys);
BENCHMARK(LoadKeysAndOptions)->Arg(10000)->Arg(100000);
BENCHMARK(ClassMemory)->Arg(100000)->Iterations(1);

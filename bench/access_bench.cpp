// Keys and options of a loaded configuration: reads and sets, beside what the least code would take.
#include <benchmark/benchmark.h>

#include "bench/floors.h"
#include "bench/sample.h"
#include "configs/config.h"
#include "engine/config_class.h"
#include "keys/key_access.h"

namespace
{

// Every benchmark's first argument is the number of registers in the table.
void SetSlots(benchmark::State &state)
{
    state.counters["items"] = static_cast<double>(state.range(0));
    state.counters["bytes"] = static_cast<double>(state.range(0)) * sizeof(VReg);
}

// The key, and the option over it, that stand on the last register of a table of so many slots; each
// `textEvery`-th of these holds a text.
struct LastSlot {
    uint32_t last;
    Sample sample;

    explicit LastSlot(int64_t slots, int64_t textEvery = 0)
        : last(static_cast<uint32_t>(slots) - 1),
          sample(KeySection(last), OptionSection(last), Registers(last + 1, static_cast<uint32_t>(textEvery)))
    {
    }
};

void ReadKey(benchmark::State &state)
{
    const LastSlot slot(state.range(0));
    const std::string name = KeyName(slot.last);
    const KeyDef *key = KeyTable_Find(&slot.sample.config->configClass->definitions.keys, name.c_str());
    for ([[maybe_unused]] auto round : state) {
        VelkWord value;
        benchmark::DoNotOptimize(Key_Read(slot.sample.config, key, &value));
        benchmark::DoNotOptimize(value);
    }
    SetSlots(state);
}

void ScanTable(benchmark::State &state)
{
    const LastSlot slot(state.range(0));
    uint32_t id = RegisterId(slot.last);
    for ([[maybe_unused]] auto round : state) {
        benchmark::DoNotOptimize(id);
        benchmark::DoNotOptimize(Floor_Scan(slot.sample.Table(), id, 1));
    }
    SetSlots(state);
}

// A class of as many keys as registers, whose names are asked for in an order that no cache foresees.
struct NamedKeys {
    std::vector<std::string> names;
    std::string sections;

    explicit NamedKeys(int64_t count)
    {
        for (uint32_t n = 0; n < count; ++n) {
            names.push_back(KeyName(n));
            sections += KeySection(n);
        }
        Shuffle(&names);
    }
};

void ReadKeysByName(benchmark::State &state)
{
    const NamedKeys keys(state.range(0));
    const Sample sample(keys.sections, "", Registers(static_cast<uint32_t>(state.range(0))));
    for ([[maybe_unused]] auto round : state)
        for (const std::string &name : keys.names) {
            VelkWord value;
            benchmark::DoNotOptimize(VelkGetKey(sample.config, name.c_str(), &value));
            benchmark::DoNotOptimize(value);
        }
    SetSlots(state);
}

void WalkAndScan(benchmark::State &state)
{
    const NamedKeys keys(state.range(0));
    const Sample sample(keys.sections, "", Registers(static_cast<uint32_t>(state.range(0))));
    for ([[maybe_unused]] auto round : state)
        for (const std::string &name : keys.names) {
            const void *key = Floor_FindName(&sample.config->configClass->definitions.keys, name.c_str());
            benchmark::DoNotOptimize(Floor_Scan(sample.Table(), static_cast<const KeyDef *>(key)->vregId, 1));
        }
    SetSlots(state);
}

void SetOption(benchmark::State &state)
{
    const LastSlot slot(state.range(0), state.range(1));
    const std::string name = OptionName(slot.last);
    uint32_t value = 0;
    for ([[maybe_unused]] auto round : state)
        Require(VelkSetOption(slot.sample.config, name.c_str(), ++value % 256) == 0, "set the option");
    SetSlots(state);
}

// The last four registers: the first of them has an option that the rules of the other three options test.
void SetOptionWithDependants(benchmark::State &state)
{
    const auto slots = static_cast<uint32_t>(state.range(0));
    const uint32_t first = slots - 4;
    std::string keys, options = OptionSection(first);
    for (uint32_t n = first; n < slots; ++n)
        keys += KeySection(n);
    for (uint32_t n = first + 1; n < slots; ++n)
        options += OptionSection(n, "Range\n" + OptionName(first) + ":1 = 0:2:255\ndefault = 0:1:255\n");
    const Sample sample(keys, options, Registers(slots));
    uint32_t value = 0;
    for ([[maybe_unused]] auto round : state)
        Require(VelkSetOption(sample.config, OptionName(first).c_str(), ++value % 256) == 0,
                "set the option");
    SetSlots(state);
}

// A copy of the table, its kinds tested and its texts copied, and so many scans.
void CopyAndScan(benchmark::State &state)
{
    const LastSlot slot(state.range(0), state.range(1));
    const VRegTable *table = slot.sample.Table();
    const int64_t scans = state.range(2);
    uint32_t id = RegisterId(slot.last);
    for ([[maybe_unused]] auto round : state) {
        VReg *slots = Floor_CopySlots(table);
        benchmark::DoNotOptimize(slots);
        for (int64_t n = 0; n < scans; ++n) {
            benchmark::DoNotOptimize(id);
            benchmark::DoNotOptimize(Floor_Scan(table, id, 1));
        }
        Floor_FreeSlots(slots, state.range(1) != 0 ? table->count : 0);
    }
    SetSlots(state);
}

} // namespace

BENCHMARK(ReadKey)->Arg(16)->Arg(64)->Arg(256)->Arg(4096);
BENCHMARK(ScanTable)->Arg(16)->Arg(64)->Arg(256)->Arg(4096);
BENCHMARK(ReadKeysByName)->Arg(256);
BENCHMARK(WalkAndScan)->Arg(256);
BENCHMARK(SetOption)->ArgsProduct({{256, 4096}, {0, 10}});
BENCHMARK(SetOptionWithDependants)->Arg(256)->Arg(4096);
BENCHMARK(CopyAndScan)->ArgsProduct({{256, 4096}, {0}, {1, 10}})->ArgsProduct({{256, 4096}, {10}, {1}});

// Save files, beside the file work that they cannot do without.
#include <filesystem>
#include <fstream>
#include <sstream>

#include <benchmark/benchmark.h>

#include "bench/sample.h"
#include "platform/file.h"

namespace
{

constexpr uint32_t registerCount = 10000;

void SaveAndLoad(benchmark::State &state)
{
    const Sample sample("", "", Registers(registerCount));
    const std::string file = sample.definitions.folder.path + "/saved.ini";
    for ([[maybe_unused]] auto round : state) {
        Require(VelkSaveToFile(sample.config, file.c_str(), "k") == 0, "save");
        Require(VelkLoadFromFile(sample.config, file.c_str(), "k") == 0, "load");
    }
    state.counters["items"] = registerCount;
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file));
}

// The same bytes, written as every save is: to a new file that is flushed and takes the place of the old one.
void WriteAndRead(benchmark::State &state)
{
    const Sample sample("", "", Registers(registerCount));
    const std::string file = sample.definitions.folder.path + "/saved.ini";
    Require(VelkSaveToFile(sample.config, file.c_str(), "k") == 0, "save");
    std::ostringstream saved;
    saved << std::ifstream(file).rdbuf();
    std::string bytes = saved.str();
    for ([[maybe_unused]] auto round : state) {
        Require(File_Replace(file.c_str(), bytes.data(), bytes.size()) == FileDone, "write");
        File handle;
        Require(File_OpenToRead(file.c_str(), &handle) == FileDone, "open");
        Require(File_ReadAt(handle, 0, bytes.data(), bytes.size()) == static_cast<int64_t>(bytes.size()),
                "read");
        File_Close(handle);
    }
    state.counters["items"] = registerCount;
    state.counters["bytes"] = static_cast<double>(bytes.size());
}

} // namespace

// Both wait for the disk.
BENCHMARK(SaveAndLoad)->UseRealTime();
BENCHMARK(WriteAndRead)->UseRealTime();

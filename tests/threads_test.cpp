// What the head of velk32.h lets run at the same time runs so: engines of one's own, configurations of a
// class that all threads share, a class load beside them. Nothing orders the threads but their start, so
// that the thread sanitizer sees what does not hold.
#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <deque>
#include <filesystem>
#include <iostream>
#include <thread>

#include "tests/support/board.h"

namespace
{

constexpr uint32_t Threads = 4, LeastRounds = 12, MostRounds = 2000, LateClasses = 60, SharedUnit = 100;
constexpr size_t BoardSize = 64;
constexpr char SharedClass[] = "100";
const std::string module = VELK_TEST_MODULE_DIR "/velkimage";

// The sample with a board for each thread in its image, and its class under numbers: each thread's, the
// shared one and the late ones.
StatusCode StartSample(Desk &desk)
{
    std::filesystem::copy(VELK_EXAMPLES_DIR "/vxi", desk.directory.path);
    std::string image = desk.directory.Read("mainframe.img");
    for (uint32_t n = 0; n < Threads; ++n)
        image.replace(n * BoardSize, BoardSize, image, 8 * BoardSize, BoardSize);
    desk.directory.Write("mainframe.img", image);

    std::string text = Edited(desk.directory.Read("CfgClass.ini"), "velkimage\n", module + "\n");
    const size_t start = text.find("Accessor");
    const std::string settings = "\n" + text.substr(start, text.find("\n[", start) - start);
    for (uint32_t n = 0; n <= SharedUnit + LateClasses; n += n == Threads ? SharedUnit - Threads : 1)
        text += "\n[" + std::to_string(n) + "]\nUnit=" + std::to_string(std::min(n, SharedUnit)) + settings;
    return desk.Start(text);
}

// A thread's own engine and file, and its configurations of an engine that all share; `config` is in use.
struct Worker : Desk {
    const Desk &common;
    ConfigEngine *growing; // thread 0 loads classes while others work on its configurations
    uint32_t number, unit = 0, lateClass = 0;
    std::string name = std::to_string(number), shared = common.directory.Path("file");
    Config *own = nullptr, *member = nullptr, *copy = nullptr, *passing = nullptr;
    char text[78] = "";

    Worker(const Desk &desk, ConfigEngine *engineOfAll, uint32_t thread)
        : common(desk), growing(engineOfAll), number(thread)
    {
        EXPECT_EQ(VelkCreateConfig(growing, SharedClass, &member), 0);
        EXPECT_EQ(VelkCreateConfig(growing, SharedClass, &copy), 0);
    }
    [[nodiscard]] std::string Result() const
    {
        const std::string image = common.directory.Read("mainframe.img");
        return Table_Text(TableOf(copy)) + directory.Read("file") +
               image.substr(number * BoardSize, BoardSize);
    }
};

StatusCode LoadBoard(Worker &worker)
{
    worker.config = worker.unit == SharedUnit ? worker.member : worker.own;
    return worker.Load(worker.number, worker.unit);
}

// Memory follows from 4 KiB, which is valid in the first address space, to 64 KiB.
StatusCode SetWithChangeList(Worker &worker)
{
    VelkWord words[3];
    uint32_t first;
    ChangeEntry entries[2] = {{"Memory", nullptr, 0, 0, 0, nullptr}, {}};
    VelkRefFromOptionName(worker.config, "AddressSpace", &entries[1].optionRef);
    const StatusCode status = VelkSetOptionWithChangeList(worker.config, "AddressSpace", 1, entries, 2);
    VelkDataFromValidValueRef(worker.config, entries[0].newValidRef, words);
    VelkDataFromValueListRef(worker.config, reinterpret_cast<uint32_t *>(words[1]), &first, 1);
    return status != 0 || entries[0].newValue != first || first != 0x10000 || entries[1].newValue != 1;
}

// A load finds one thread's save, and the whole of it.
StatusCode LoadOneOfAll(Worker &worker)
{
    const StatusCode status = VelkLoadFromFile(worker.config, worker.shared.c_str(), "k");
    const std::string values = worker.Run("Label TriggerLines");
    return status != 0 || values[1] != values[3];
}

StatusCode LoadLateClass(Worker &worker)
{
    if (worker.number != 0 || worker.lateClass == LateClasses)
        return 0;
    const std::string name = std::to_string(SharedUnit + ++worker.lateClass);
    return VelkCreateConfig(worker.growing, name.c_str(), &worker.passing) +
           VelkDiscardConfig(worker.passing);
}

const std::pair<const char *, StatusCode (*)(Worker &)> calls[] = {
    {"open",
     [](Worker &w) { return VelkInitializeConfigEngine(w.common.directory.path.c_str(), &w.engine); }},
    {"load class", [](Worker &w) { return VelkCreateConfig(w.engine, w.name.c_str(), &w.own); }},
    {"load board", LoadBoard},
    {"set", [](Worker &w) { return +(w.Run("AddressSpace=0 Memory=4096 Label='t" + w.name) != "0 0 0"); }},
    {"change list", SetWithChangeList},
    {"keys", [](Worker &w) { return +(w.Run("#Averages=16 TriggerLines=(" + w.name) != "0 0"); }},
    {"save board", [](Worker &w) { return w.Save(w.number, w.unit); }},
    {"save, own file", [](Worker &w) { return w.SaveFile(); }},
    {"save, one file", [](Worker &w) { return VelkSaveToFile(w.config, w.shared.c_str(), "k"); }},
    {"load, one file", LoadOneOfAll},
    {"load, own file", [](Worker &w) { return w.LoadFile(); }},
    {"duplicate", [](Worker &w) { return VelkDuplicateConfig(w.member, w.copy); }},
    {"create", [](Worker &w) { return VelkCreateConfig(w.common.engine, SharedClass, &w.passing); }},
    {"discard", [](Worker &w) { return VelkDiscardConfig(w.passing); }},
    {"translate", [](Worker &w) { return VelkTranslateValue(w.config, "VxiDevice/Memory", 0, w.text, 78); }},
    {"message", [](Worker &w) { return VelkStrError(-1, w.text), StatusCode{0}; }},
    {"late class", LoadLateClass},
    {"close", [](Worker &w) { return VelkCloseConfigEngine(std::exchange(w.engine, nullptr)); }},
    {"discard, closed", [](Worker &w) { return VelkDiscardConfig(w.own); }},
};

// Relaxed, so that the counting puts no call of one thread ahead of another's: it would hide a race.
constexpr auto relaxed = std::memory_order_relaxed;
std::atomic<uint32_t> inFlight;
std::array<std::atomic<uint32_t>, std::size(calls)> overlapped; // calls that began beside another thread's

// Once with a configuration of the thread's own engine, once with one of the engine that all share.
void RunRounds(Worker &worker)
{
    for (const uint32_t unit : {worker.number, SharedUnit}) {
        worker.unit = unit;
        for (size_t n = 0; n < std::size(calls); ++n) {
            if (inFlight.fetch_add(1, relaxed) > 0)
                overlapped[n].fetch_add(1, relaxed);
            EXPECT_EQ(calls[n].second(worker), 0) << calls[n].first;
            inFlight.fetch_sub(1, relaxed);
        }
    }
}

// Each thread from the start on, until nothing is missing.
template <typename Work, typename Missing> void RunThreads(Work work, Missing isMissing)
{
    std::barrier start(Threads);
    std::vector<std::thread> threads;
    for (uint32_t n = 0; n < Threads; ++n)
        threads.emplace_back([&, n] {
            start.arrive_and_wait();
            for (uint32_t round = 0; round < LeastRounds || (round < MostRounds && isMissing()); ++round)
                work(n);
        });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

TEST(Threads, DoAtOnceWhatTheyDoAlone)
{
    Desk common, growing;
    std::deque<Worker> workers;
    std::string alone[Threads];
    ASSERT_EQ(StartSample(common) + common.Open(SharedClass), 0);
    ASSERT_EQ(VelkInitializeConfigEngine(common.directory.path.c_str(), &growing.engine), 0);
    const std::string image = common.directory.Read("mainframe.img");
    for (uint32_t n = 0; n < Threads; ++n) {
        RunRounds(workers.emplace_back(common, growing.engine, n));
        alone[n] = workers[n].Result();
    }
    common.directory.Write("mainframe.img", image);

    RunThreads(
        [&](uint32_t n) { RunRounds(workers[n]); },
        [] { return std::ranges::any_of(overlapped, [](auto &count) { return count.load(relaxed) == 0; }); });
    for (size_t n = 0; n < std::size(calls); ++n) {
        std::cout << "measured: " << overlapped[n] << " overlapped: " << calls[n].first << "\n";
        EXPECT_GT(overlapped[n], 0U) << calls[n].first;
    }
    for (Worker &worker : workers) {
        EXPECT_EQ(worker.Result(), alone[worker.number]);
        VelkDiscardConfig(worker.member);
        VelkDiscardConfig(worker.copy);
        worker.config = nullptr;
    }
    // Nothing but the definitions, the image with its table, and the file of all: saves leave no debris.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(common.directory.path), {}), 6);
}

// The loader runs the destructors of a module that goes under its own lock, which the thread sanitizer does
// not see.
TEST(Threads, LoadAndUnloadOneModule)
{
    if (IsSanitizedFor("thread"))
        GTEST_SKIP();
    Desk common;
    ASSERT_EQ(StartSample(common), 0);
    std::atomic<uint32_t> unloads{0};
    const auto work = [&](uint32_t n) {
        ConfigEngine *engine;
        Config *config;
        EXPECT_EQ(VelkInitializeConfigEngine(common.directory.path.c_str(), &engine), 0);
        EXPECT_EQ(VelkCreateConfig(engine, std::to_string(n).c_str(), &config), 0);
        EXPECT_EQ(VelkLoadCurrentConfig(config, n, n), 0);
        VelkCloseConfigEngine(engine);
        VelkDiscardConfig(config);
        unloads.fetch_add(Module_IsLoaded(module) ? 0 : 1, relaxed);
    };
    RunThreads(work, [&] { return unloads.load(relaxed) < 20; });
    std::cout << "measured: " << unloads << " times seen unloaded\n";
    EXPECT_GT(unloads, 0U);
}

// Several threads at once: each on an engine and a board of its own, all on configurations of one loaded
// class and on one save file. The thread sanitizer looks on; what comes out has to be what each thread comes
// to alone.
#include <dlfcn.h>

#include <array>
#include <atomic>
#include <barrier>
#include <filesystem>
#include <thread>

#include "tests/support/board.h"

namespace
{

constexpr uint32_t addresses[] = {8, 24, 96, 192}; // of the threads' boards
constexpr uint32_t threadCount = std::size(addresses);

enum Kind { Load, Set, Read, SaveFile, LoadFile, ReadBoard, WriteBoard, Copy, Translate, Other, KindCount };
constexpr const char *kindNames[KindCount] = {"class loads",  "sets",        "reads",        "saves to file",
                                              "file loads",   "board reads", "board writes", "copies",
                                              "translations", "others"};

// Relaxed: what counts the calls may not put them in an order, or it would hide the races between them.
std::atomic<int> underWay;
std::array<std::atomic<int>, KindCount> overlapped;

template <typename Call> auto Counted(Kind kind, Call call)
{
    if (underWay.fetch_add(1, std::memory_order_relaxed) > 0)
        overlapped[kind].fetch_add(1, std::memory_order_relaxed);
    auto result = call();
    underWay.fetch_sub(1, std::memory_order_relaxed);
    return result;
}

// The sample. It holds the accessor's module, because the sanitizer does not see the loader's lock: when the
// last engine that uses the module closes, it takes the destructors that the unloading runs for a race with
// the calls before.
struct Site : Desk {
    void *const held = dlopen(VELK_TEST_MODULE_DIR "/velkimage.so", RTLD_NOW);

    Site()
    {
        const std::string sample = VELK_EXAMPLES_DIR "/vxi";
        std::filesystem::copy(sample, directory.path);
        EXPECT_EQ(Start(Edited(ReadFile(sample + "/CfgClass.ini"), "velkimage\n",
                               VELK_TEST_MODULE_DIR "/velkimage\n")),
                  0);
        EXPECT_EQ(Open("VxiDevice"), 0);
    }
    ~Site()
    {
        Clear();
        dlclose(held);
    }
};

// What one thread does: two configurations of the shared class, on a board of its own.
struct Worker {
    const Site *site;
    uint32_t board;
    Config *config = nullptr, *copy = nullptr;
    std::string log = {};

    void Expect(Kind kind, StatusCode status, StatusCode expected = 0)
    {
        if (status != expected)
            log += std::string(kindNames[kind]) + " gave " + std::to_string(status) + "; ";
    }
    [[nodiscard]] StatusCode LoadAClass() const
    {
        ConfigEngine *engine = nullptr;
        Config *own = nullptr;
        StatusCode status = VelkInitializeConfigEngine(site->directory.path.c_str(), &engine);
        status += VelkCreateConfig(engine, "VxiDevice", &own);
        status += VelkLoadCurrentConfig(own, board, 0);
        return status + VelkCloseConfigEngine(engine) + VelkDiscardConfig(own);
    }
    void SetAndRead(uint32_t space)
    {
        ChangeEntry changes[2] = {{"Memory", nullptr, 0, 0, 0, nullptr},
                                  {"Label", nullptr, 0, 0, 0, nullptr}};
        Expect(Set, Counted(Set, [&] {
                   return VelkSetOptionWithChangeList(config, "AddressSpace", space, changes, 2);
               }));
        const std::string label = "board " + std::to_string(board);
        Expect(Set, Counted(Set, [&] {
                   return VelkSetOptionEx(config, "Label", ValueKindString, Word(label.c_str()));
               }));
        uint32_t kind = 0, count = 0;
        VelkValidRef ref = nullptr;
        VelkWord words[3];
        Expect(Read, Counted(Read, [&] {
                   return VelkNumberOfOptions(config, &count) +
                          VelkQueryOptionValidValues(config, "Memory", &kind, &ref) +
                          VelkDataFromValidValueRef(config, ref, words) +
                          VelkGetOptionEx(config, "Label", -1, words, nullptr);
               }));
    }
    void SaveAndLoad(const std::string &path)
    {
        Expect(SaveFile, Counted(SaveFile, [&] { return VelkSaveToFile(config, path.c_str(), "k"); }));
        Expect(LoadFile, Counted(LoadFile, [&] { return VelkLoadFromFile(copy, path.c_str(), "k"); }));
        Expect(LoadFile, TableOf(copy)->count, TableOf(config)->count); // whoever saved it, all of it
    }
    void Round(uint32_t round)
    {
        Expect(Load, Counted(Load, [&] { return LoadAClass(); }));
        Expect(ReadBoard, Counted(ReadBoard, [&] { return VelkLoadCurrentConfig(config, board, 0); }));
        SetAndRead(round % 2);
        SaveAndLoad(site->directory.Path("shared.cfg"));
        SaveAndLoad(site->directory.Path("own" + std::to_string(board) + ".cfg"));
        Expect(Copy, Counted(Copy, [&] { return VelkDuplicateConfig(copy, config); }));
        Expect(WriteBoard, Counted(WriteBoard, [&] { return VelkSaveCurrentConfig(config, board, 0); }));
        char text[80];
        Expect(Translate, Counted(Translate, [&] {
                   return VelkTranslateValue(config, "VxiDevice/AddressSpace", round % 2, text, sizeof text);
               }));
        Expect(Other, Counted(Other, [&] {
                   VelkStrError(-static_cast<StatusCode>(round), text);
                   return VelkDiscardConfig(copy) + VelkCreateConfig(site->engine, "VxiDevice", &copy);
               }));
    }
};

// Every thread's work from the same start, at once or one after the other: what each has in the end.
std::string Work(const Site &site, bool isAtOnce, uint32_t rounds)
{
    site.directory.Write("mainframe.img", ReadFile(VELK_EXAMPLES_DIR "/vxi/mainframe.img"));
    std::vector<Worker> workers;
    for (uint32_t n = 0; n < threadCount; ++n) {
        workers.push_back({&site, addresses[n]});
        VelkCreateConfig(site.engine, "VxiDevice", &workers[n].config);
        VelkCreateConfig(site.engine, "VxiDevice", &workers[n].copy);
    }
    std::barrier start(isAtOnce ? threadCount : 1);
    const auto run = [&](Worker *worker) {
        for (uint32_t round = 0; round < rounds; ++round) {
            start.arrive_and_wait();
            worker->Round(round);
        }
    };
    std::vector<std::thread> threads;
    for (Worker &worker : workers) {
        threads.emplace_back(run, &worker);
        if (!isAtOnce)
            threads.back().join();
    }
    std::string result;
    for (uint32_t n = 0; n < threadCount; ++n) {
        if (isAtOnce)
            threads[n].join();
        result += workers[n].log + Table_Text(TableOf(workers[n].config)) + "\n";
        VelkDiscardConfig(workers[n].config);
        VelkDiscardConfig(workers[n].copy);
    }
    return result + ReadFile(site.directory.Path("mainframe.img"));
}

} // namespace

TEST(Threads, ComeToWhatEachComesToAlone)
{
    const Site site;
    constexpr uint32_t rounds = 50;
    const std::string alone = Work(site, false, rounds);
    EXPECT_EQ(Work(site, true, rounds), alone);
    for (size_t kind = 0; kind < KindCount; ++kind) {
        printf("measured: %s beside another call: %d\n", kindNames[kind], overlapped[kind].load());
        EXPECT_GT(overlapped[kind].load(), 0) << kindNames[kind];
    }
}

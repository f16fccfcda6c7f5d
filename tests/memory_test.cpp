// Memory: every failed allocation leaves things as they were, and nothing grows.
#include <dlfcn.h>

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

const char *const keys = "[Mode]\n0x10 (0xF)=Value\n[Speed]\n0x11 (0xFF)=Value\n[T]\n0x0B000001 (0)=String\n"
                         "[L]\n0x0F000001 (0)=List\n";
const char *const options = "[Mode]\nKeys=Mode\nValidValuesType=Range\ndefault=0:1:3\n"
                            "[Speed]\nKeys=Speed\nValidValuesType=List\nMode:1=(5,6)\ndefault=(1,2)\n"
                            "[T]\nKeys=T\nValidValuesType=String\nMode:1=one\ndefault=other\n"
                            "[L]\nKeys=L\nValidValuesType=ListSet\nMode:1=[(1,1)]\ndefault=[(2)]\n";
const char *const state = "10=0 11=1 b000001=other f000001=2 b000002=-";

int64_t ResidentPages()
{
    int64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident;
}

// Their allocators keep freed blocks and copy at every growth.
bool IsSanitized()
{
    return dlsym(RTLD_DEFAULT, "__asan_init") != nullptr || dlsym(RTLD_DEFAULT, "__tsan_init") != nullptr;
}

} // namespace

TEST(Memory, FailedSetsAreUndone)
{
    const Board board(keys, options, state);
    const int64_t live = LiveAllocations();
    ChangeEntry entries[2] = {};
    entries[0].name = "T";
    entries[1].name = "L";
    FailEachAllocation([&] { return VelkSetOptionWithChangeList(board.config, "Mode", 1, entries, 2); },
                       [&](StatusCode status) {
                           EXPECT_EQ(status, -1);
                           EXPECT_EQ(board.Run("."), state);
                           EXPECT_EQ(entries[0].flags + entries[1].flags, 0U);
                           EXPECT_EQ(LiveAllocations(), live);
                       });
    const std::string after = "10*=1 11*=5 b000001*=one f000001*=1,1 b000002=-";
    EXPECT_EQ(board.Run("."), after);
    EXPECT_EQ(entries[0].flags + entries[1].flags, 6U);
    bool fired = true;
    for (int64_t nth = 1; fired; ++nth) { // memory that is gone for good does not stop the roll-back
        const FailAllocationsFrom fail(nth);
        const StatusCode status = VelkSetOption(board.config, "Mode", 0);
        fired = fail.Fired();
        ASSERT_EQ(status, fired ? -1 : 0);
        ASSERT_EQ(board.Run(".") == after, fired);
    }
}

TEST(Memory, FailedCopiesLeaveWhatWas)
{
    const Board board(keys, options, state);
    Config *config;
    FailEachAllocation([&] { return VelkCreateConfig(board.engine, "C", &config); },
                       [&](StatusCode status) { EXPECT_TRUE(status == -1 && config == nullptr); });
    ASSERT_EQ(VelkDuplicateConfig(board.config, config), 0);
    TableOf(board.config)->capacity = 9; // room that the copy can do without
    bool fired = true;
    for (int64_t nth = 1; fired; ++nth) {
        VelkSetKey(config, "Mode", 2);
        const FailNthAllocation fail(nth);
        const StatusCode status = VelkDuplicateConfig(board.config, config);
        fired = fail.Fired();
        EXPECT_EQ(TableOf(config)->capacity, nth == 1 ? 5U : 9U);
        // A payload alone that is not copied is null in the copy.
        const std::string copy = Table_Text(TableOf(config));
        EXPECT_TRUE(status == 0 ? copy.rfind("10=0 11=1 b", 0) == 0
                                : status == -1 && copy.rfind("10*=2", 0) == 0)
            << nth << ": " << status << " " << copy;
    }
    EXPECT_EQ(Table_Text(TableOf(config)), state);
    VelkDiscardConfig(config);
}

TEST(Memory, FailedFilesLeaveWhatWas)
{
    const Board board(keys, options, state);
    const std::string path = board.directory.Path("file");
    const int64_t live = LiveAllocations();
    board.directory.Write("file", "as it was");
    FailEachAllocation([&] { return VelkSaveToFile(board.config, path.c_str(), "k"); },
                       [&](StatusCode status) {
                           EXPECT_TRUE(status == -1 || status == -6) << status;
                           EXPECT_EQ(board.directory.Read("file"), "as it was");
                           EXPECT_EQ(LiveAllocations(), live);
                       });
    FailEachAllocation([&] { return VelkLoadFromFile(board.config, path.c_str(), "k"); },
                       [&](StatusCode status) {
                           EXPECT_TRUE(status == -1 || status == -4) << status;
                           EXPECT_EQ(board.Run("."), state);
                           EXPECT_EQ(LiveAllocations(), live);
                       });
    EXPECT_EQ(board.Run("."), "10*=0 11*=1 b000001*=other f000001*=2 b000002*=");
}

TEST(Memory, ReadsAllocateNothing)
{
    const Board board(keys, options, state);
    VelkWord word;
    uint32_t number;
    VelkValidRef ref;
    const int64_t calls = AllocationCalls();
    VelkSetKey(board.config, "Mode", 1);
    for (const char *name : {"Mode", "Speed", "T", "L"}) {
        VelkGetKey(board.config, name, &word);
        VelkGetOptionEx(board.config, name, -1, &word, nullptr);
        VelkQueryOptionValidValues(board.config, name, &number, &ref);
    }
    EXPECT_EQ(AllocationCalls(), calls);
    TableOf(board.config)->count = 2; // a table of numbers
    EXPECT_EQ(VelkSetOption(board.config, "Speed", 6), 0);
    EXPECT_EQ(AllocationCalls(), calls + 1); // its snapshot
    TableOf(board.config)->count = 5;
}

TEST(Memory, StaysLevelOverAMillionSets)
{
    if (IsSanitized())
        GTEST_SKIP();
    const Board board(keys, options, state);
    int64_t live = 0, pages = 0;
    for (uint32_t n = 0; n < 1001000; ++n) {
        if (n == 1000) {
            live = LiveAllocations();
            pages = ResidentPages();
        }
        ASSERT_EQ(VelkSetOption(board.config, "Mode", n % 2), 0);
    }
    EXPECT_EQ(LiveAllocations(), live);
    EXPECT_LE(ResidentPages(), pages + 64);
}

TEST(Memory, BoundsTheNumberListsOfALoad)
{
    if (IsSanitized())
        GTEST_SKIP();
    for (const bool fits : {true, false}) {
        SCOPED_TRACE(fits);
        const std::string rest = fits ? "(1,2,3,4)" : "(1,2,3,4,5)";
        Board_Expect("[A]\n0x10 (1)=Index\nArray=:1:1:4194300\n",
                     "[A]\nKeys=A\nValidValuesType=List\ndefault=" + rest + "\n", nullptr, "",
                     fits ? "" : "-206");
        const Board board(keys, options, nullptr);
        board.directory.Write("file",
                              "[Information]\nKey=k\n[Data]\n0F000001=:1:1:4194300\n0F000001=" + rest + "\n");
        EXPECT_EQ(VelkLoadFromFile(board.config, board.directory.Path("file").c_str(), "k"), fits ? 0 : -1);
    }
}

// The out-of-memory driver: it carries out an operation as it should be, and then under every fault that
// this shows to be possible, each time on a fresh bed. A fault is one failing allocation, two, or one with
// all behind it; each alone and along with each failing call of the scripted accessor.
//
// Behind a failure the bed has to tell what it told before, as many blocks are in use as before, and the same
// call then succeeds and has the result that it has without a fault.
#ifndef VELK_TESTS_SUPPORT_OUT_OF_MEMORY_H
#define VELK_TESTS_SUPPORT_OUT_OF_MEMORY_H

#include <set>

#include "tests/support/board.h"

// A board with a second configuration, places for what the operations make, and files to load.
struct Bed : Board {
    Config *copy = nullptr;
    VRegTable *table = nullptr;
    List *list = nullptr;
    char *text = nullptr, *lost = nullptr; // the latter is not observed
    ChangeEntry entries[2] = {{"B", nullptr, 88, 77, 77, nullptr}, {"T", nullptr, 88, 77, 77, nullptr}};

    Bed();
    ~Bed();
    void Discard();

    // All that an operation may change: tables, files, modules, results.
    [[nodiscard]] std::string Observe() const;
};

inline void LeaveAsItIs(Bed & /*bed*/)
{
}

// `memory` and `accessor` hold the outcomes, statuses, of each failing allocation and accessor call in turn,
// repeated ones once; they are empty where none is made. Other faults have one of these outcomes. A "!"
// tells that the failure spoils the bed, as it may. With a 0 in `memory` strings and lists may be missing
// from the result.
struct Operation {
    const char *names; // of the functions that it stands for
    const char *memory, *accessor;
    StatusCode (*call)(Bed &);
    void (*prepare)(Bed &) = LeaveAsItIs;
    void (*spoil)(Bed &) = LeaveAsItIs;
};

// Gives how many faults it has tried.
int64_t Operation_Try(const Operation &operation);

std::set<std::string> Words(const std::string &text);

#endif

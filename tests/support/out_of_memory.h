// The out-of-memory driver: it carries out an operation as it should be, and then under every fault that
// this shows to be possible, each time on a fresh bed. A fault is one failing allocation, two, or one with
// all behind it.
//
// Behind a failure the bed has to tell what it told before, as many blocks are in use as before, and the same
// call then succeeds and has the result that it has without a fault.
#ifndef VELK_TESTS_SUPPORT_OUT_OF_MEMORY_H
#define VELK_TESTS_SUPPORT_OUT_OF_MEMORY_H

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

// `outcomes` are the statuses of each failing allocation in turn, repeated ones once; it is empty where none
// is made. Other faults have one of these. With a 0 among them strings and lists may be missing from the
// result.
struct Operation {
    const char *names; // of the functions that it stands for
    const char *outcomes;
    StatusCode (*call)(Bed &);
    void (*prepare)(Bed &) = LeaveAsItIs;
    bool mayChange = false; // where it fails; what it leaves then is in other tests
};

// Gives how many faults it has tried.
int64_t Operation_Try(const Operation &operation);

#endif

// The out-of-memory driver: it carries out an operation as it should be, and then under every fault that
// this shows to be possible, each time on a fresh bed. A fault is one failing allocation, two, or one with
// all behind it; each alone and along with each failing call of the scripted accessor.
//
// A bed is a Desk with `std::string Observe() const`, which tells all that the operation may change: tables,
// files, modules, results. Behind a failure it has to tell what it told before, as many blocks are in use
// as before, and the same call then succeeds and has the result that it has without a fault.
#ifndef VELK_TESTS_SUPPORT_OUT_OF_MEMORY_H
#define VELK_TESTS_SUPPORT_OUT_OF_MEMORY_H

#include <optional>
#include <set>

#include "tests/support/board.h"

template <typename Bed> void LeaveAsItIs(Bed & /*bed*/)
{
}

// `memory` and `accessor` hold the outcomes, statuses, of each failing allocation and accessor call in turn,
// repeated ones once; they are empty where none is made. Other faults have one of these outcomes. A "!"
// tells that the failure spoils the bed, as it may. With a 0 in `memory` strings and lists may be missing
// from the result.
template <typename Bed> struct Operation {
    const char *names; // of the functions that it stands for
    const char *memory, *accessor;
    StatusCode (*call)(Bed &);
    void (*prepare)(Bed &) = LeaveAsItIs;
    void (*spoil)(Bed &) = LeaveAsItIs;
    bool keepsRoom = false; // a failure may leave blocks behind, in what the bed owns
};

struct Fault {
    int64_t allocation, count, further; // as for FailAllocations
    int accessorCall;
};

struct Attempt {
    std::string outcome;
    int64_t allocations;
    int accessorCalls;
};

std::set<std::string> Words(const std::string &text);

void Outcomes_Append(std::string *outcomes, const std::string &outcome);

// The names in a file of the source that begin with `prefix` and have `end` behind them.
std::set<std::string> NamesIn(const std::string &file, const std::string &prefix, char end);

// Whether `seen` is `whole`, but for words in it whose values are null.
bool IsButForPayloads(const std::string &seen, const std::string &whole);

// Prints how many points this process has tried, and expects no fewer than the committed number.
void OutOfMemory_Report(int64_t committed);
extern int64_t outOfMemoryPoints;

// What a bed tells in the end.
struct Endings {
    std::string good, spoilt;
};

template <typename Bed> std::string Operation_Spoilt(const Operation<Bed> &operation)
{
    Bed bed;
    operation.prepare(bed);
    operation.spoil(bed);
    return bed.Observe();
}

// The first one is without a fault, and finds out what is to come of it.
template <typename Bed>
Attempt Operation_Attempt(const Operation<Bed> &operation, const Fault &fault, Endings *endings)
{
    SCOPED_TRACE(testing::Message() << "allocation " << fault.allocation << " + " << fault.count << ", "
                                    << fault.further << ", accessor call " << fault.accessorCall);
    Bed bed;
    operation.prepare(bed);
    const std::string before = bed.Observe();
    const int64_t allocations = AllocationCalls(), blocks = LiveAllocations();
    bed.answers.entered = 0;
    bed.answers.failing = fault.accessorCall;
    std::optional<FailAllocations> fail(std::in_place, fault.allocation, fault.count, fault.further);
    const StatusCode status = operation.call(bed);
    fail.reset();
    bed.answers.failing = 0;
    const int64_t kept = LiveAllocations() - blocks;
    Attempt attempt = {std::to_string(status), AllocationCalls() - allocations, bed.answers.entered};

    const std::string seen = bed.Observe();
    if (endings->good.empty())
        endings->good = seen;
    else
        ++outOfMemoryPoints;
    if (status >= 0) {
        const bool mayLose = Words(operation.memory).count("0") != 0 && IsButForPayloads(seen, endings->good);
        EXPECT_TRUE(mayLose || seen == endings->good) << seen << "\ninstead of " << endings->good;
        return attempt;
    }
    if (seen != before) {
        EXPECT_EQ(seen, endings->spoilt);
        attempt.outcome += "!";
    }
    EXPECT_TRUE(operation.keepsRoom || kept == 0 || (seen != before && kept < 0)) << kept << " blocks";
    EXPECT_GE(operation.call(bed), 0) << "when called again";
    EXPECT_EQ(bed.Observe(), endings->good) << "when called again";
    return attempt;
}

template <typename Bed> void Operation_Try(const Operation<Bed> &operation)
{
    SCOPED_TRACE(operation.names);
    Endings endings = {"", Operation_Spoilt(operation)};
    const Attempt first = Operation_Attempt(operation, {0, 0, 0, 0}, &endings);
    std::string memory, accessor;
    std::set<std::string> outcomes;
    const auto attempt = [&](const Fault &fault) {
        Attempt made = Operation_Attempt(operation, fault, &endings);
        outcomes.insert(made.outcome);
        return made;
    };
    for (int m = 0; m <= first.accessorCalls && !testing::Test::HasFailure(); ++m) {
        const Attempt alone = m == 0 ? first : attempt({0, 0, 0, m});
        if (m > 0)
            Outcomes_Append(&accessor, alone.outcome);
        for (int64_t n = 1; n <= alone.allocations && !testing::Test::HasFailure(); ++n) {
            const Attempt one = attempt({n, 1, 0, m});
            if (m == 0)
                Outcomes_Append(&memory, one.outcome);
            attempt({n, INT32_MAX, 0, m});
            for (int64_t further = n + 1; further <= one.allocations; ++further)
                attempt({n, 1, further, m});
        }
    }
    EXPECT_EQ(memory, operation.memory);
    EXPECT_EQ(accessor, operation.accessor);
    outcomes.merge(Words(memory + " " + accessor));
    EXPECT_EQ(outcomes, Words(memory + " " + accessor)) << "with several faults at once";
}

// Tries all of them, which have to stand for each declared name.
template <typename Bed, size_t count>
void Operations_Try(const Operation<Bed> (&operations)[count], const std::set<std::string> &declared)
{
    std::set<std::string> named;
    for (size_t n = 0; n < count && !testing::Test::HasFailure(); ++n) {
        named.merge(Words(operations[n].names));
        Operation_Try(operations[n]);
    }
    EXPECT_TRUE(testing::Test::HasFailure() || named == declared) << testing::PrintToString(named);
}

#endif

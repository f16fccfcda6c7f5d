#include "tests/support/out_of_memory.h"

#include <optional>

namespace
{

struct Fault {
    int64_t allocation, count, further; // as for FailAllocations
    int accessorCall;
};

struct Attempt {
    std::string outcome;
    int64_t allocations;
    int accessorCalls;
};

// An operation at work, and what a bed tells in the end.
struct Trial {
    const Operation &operation;
    std::string good, spoilt;
    std::set<std::string> outcomes;
    int64_t faults = 0;
};

void Outcomes_Append(std::string *outcomes, const std::string &outcome)
{
    if (outcomes->substr(outcomes->rfind(' ') + 1) != outcome)
        *outcomes += (outcomes->empty() ? "" : " ") + outcome;
}

// Whether `seen` is `whole`, but for words in it whose values are null.
bool IsButForPayloads(const std::string &seen, const std::string &whole)
{
    const std::vector<std::string> words = Split(seen, ' '), others = Split(whole, ' ');
    return std::equal(words.begin(), words.end(), others.begin(), others.end(),
                      [](const std::string &word, const std::string &other) {
                          return word == other || word == other.substr(0, other.find('=')) + "=-";
                      });
}

std::string Operation_Spoilt(const Operation &operation)
{
    Bed bed;
    operation.prepare(bed);
    operation.spoil(bed);
    return bed.Observe();
}

// The first one is without a fault, and finds out what is to come of it.
Attempt Trial_Attempt(Trial *trial, const Fault &fault)
{
    SCOPED_TRACE(testing::Message() << "allocation " << fault.allocation << " + " << fault.count << ", "
                                    << fault.further << ", accessor call " << fault.accessorCall);
    const Operation &operation = trial->operation;
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
    if (trial->good.empty())
        trial->good = seen;
    else
        ++trial->faults;
    if (status >= 0) {
        const bool mayLose = Words(operation.memory).contains("0") && IsButForPayloads(seen, trial->good);
        EXPECT_TRUE(mayLose || seen == trial->good) << seen << "\ninstead of " << trial->good;
    } else {
        if (seen != before) {
            EXPECT_EQ(seen, trial->spoilt);
            attempt.outcome += "!";
        }
        EXPECT_TRUE(kept == 0 || (seen != before && kept < 0)) << kept << " blocks";
        EXPECT_GE(operation.call(bed), 0) << "when called again";
        EXPECT_EQ(bed.Observe(), trial->good) << "when called again";
    }
    trial->outcomes.insert(attempt.outcome);
    return attempt;
}

} // namespace

std::set<std::string> Words(const std::string &text)
{
    const std::vector<std::string> words = Split(text, ' ');
    return {words.begin(), words.end()};
}

int64_t Operation_Try(const Operation &operation)
{
    SCOPED_TRACE(operation.names);
    Trial trial = {operation, "", Operation_Spoilt(operation), {}};
    const Attempt first = Trial_Attempt(&trial, {0, 0, 0, 0});
    trial.outcomes.clear();
    std::string memory, accessor;
    for (int m = 0; m <= first.accessorCalls && !testing::Test::HasFailure(); ++m) {
        const Attempt alone = m == 0 ? first : Trial_Attempt(&trial, {0, 0, 0, m});
        if (m > 0)
            Outcomes_Append(&accessor, alone.outcome);
        for (int64_t n = 1; n <= alone.allocations && !testing::Test::HasFailure(); ++n) {
            const Attempt one = Trial_Attempt(&trial, {n, 1, 0, m});
            if (m == 0)
                Outcomes_Append(&memory, one.outcome);
            Trial_Attempt(&trial, {n, INT32_MAX, 0, m});
            for (int64_t further = n + 1; further <= one.allocations; ++further)
                Trial_Attempt(&trial, {n, 1, further, m});
        }
    }
    EXPECT_EQ(memory, operation.memory);
    EXPECT_EQ(accessor, operation.accessor);
    const std::set<std::string> expected = Words(memory + " " + accessor);
    trial.outcomes.insert(expected.begin(), expected.end());
    EXPECT_EQ(trial.outcomes, expected) << "with several faults at once";
    return trial.faults;
}

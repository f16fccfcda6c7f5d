#include "tests/support/out_of_memory.h"

#include <optional>

#include <gmock/gmock.h>

using testing::Contains;

namespace
{

struct Fault {
    int64_t allocation, count, further; // as for FailAllocations
};

// An operation at work.
struct Trial {
    const Operation &operation;
    std::string good;                 // what a bed tells in the end
    std::vector<std::string> allowed; // outcomes
    int64_t faults = 0;
};

// Whether `seen` is `whole`, but for words in it whose values are null.
bool IsButForPayloads(const std::string &seen, const std::string &whole)
{
    const std::vector<std::string> words = Split(seen, ' '), others = Split(whole, ' ');
    return std::equal(words.begin(), words.end(), others.begin(), others.end(),
                      [](const std::string &word, const std::string &other) {
                          return word == other || word == other.substr(0, other.find('=')) + "=-";
                      });
}

// Gives the status. The first attempt is without a fault, and finds out what is to come of it.
StatusCode Trial_Attempt(Trial *trial, const Fault &fault, int64_t *allocations)
{
    SCOPED_TRACE(testing::Message() << "allocation " << fault.allocation << " + " << fault.count << ", "
                                    << fault.further);
    const Operation &operation = trial->operation;
    Bed bed;
    operation.prepare(bed);
    const std::string before = bed.Observe();
    const int64_t calls = AllocationCalls(), blocks = LiveAllocations();
    std::optional<FailAllocations> fail(std::in_place, fault.allocation, fault.count, fault.further);
    const StatusCode status = operation.call(bed);
    fail.reset();
    const int64_t kept = LiveAllocations() - blocks;
    *allocations = AllocationCalls() - calls;

    const std::string seen = bed.Observe();
    if (trial->good.empty()) {
        trial->good = seen;
        return status;
    }
    ++trial->faults;
    EXPECT_THAT(trial->allowed, Contains(std::to_string(status)));
    if (status >= 0) {
        const bool mayLose = status == 0 && IsButForPayloads(seen, trial->good);
        EXPECT_TRUE(mayLose || seen == trial->good) << seen << "\ninstead of " << trial->good;
        return status;
    }
    EXPECT_TRUE(operation.mayChange || seen == before) << seen << "\ninstead of " << before;
    EXPECT_TRUE(kept == 0 || (operation.mayChange && kept < 0)) << kept << " blocks";
    EXPECT_GE(operation.call(bed), 0) << "when called again";
    EXPECT_EQ(bed.Observe(), trial->good) << "when called again";
    return status;
}

} // namespace

int64_t Operation_Try(const Operation &operation)
{
    SCOPED_TRACE(operation.names);
    Trial trial = {operation, "", Split(operation.outcomes, ' ')};
    int64_t count, countOfOne, ignored;
    EXPECT_GE(Trial_Attempt(&trial, {0, 0, 0}, &count), 0);
    std::string outcomes, last;
    for (int64_t n = 1; n <= count && !testing::Test::HasFailure(); ++n) {
        const std::string outcome = std::to_string(Trial_Attempt(&trial, {n, 1, 0}, &countOfOne));
        if (outcome != std::exchange(last, outcome))
            outcomes += (outcomes.empty() ? "" : " ") + outcome;
        Trial_Attempt(&trial, {n, INT32_MAX, 0}, &ignored);
        for (int64_t further = n + 1; further <= countOfOne; ++further)
            Trial_Attempt(&trial, {n, 1, further}, &ignored);
    }
    EXPECT_EQ(outcomes, operation.outcomes);
    return trial.faults;
}

// canary FAULT: does what one of the tools has to report. A tool that does not, finds nothing in the tests
// either.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace
{

// Kept from the optimiser, which would see through each of these.
int *volatile block;
volatile int largest = 2147483647;
int shared;

void Leak()
{
    block = static_cast<int *>(std::malloc(64));
    block = nullptr;
}

void Overrun()
{
    block = static_cast<int *>(std::malloc(64));
    block[16] = 1;
    std::free(block);
}

void Overflow()
{
    largest = largest + 1;
}

void Race()
{
    std::thread other([] { ++shared; });
    ++shared;
    other.join();
}

constexpr struct {
    const char *name;
    void (*commit)();
} faults[] = {{"leak", Leak}, {"overrun", Overrun}, {"overflow", Overflow}, {"race", Race}};

} // namespace

int main(int argc, char **argv)
{
    for (const auto &fault : faults)
        if (argc == 2 && std::strcmp(argv[1], fault.name) == 0) {
            fault.commit();
            std::puts("no report so far");
            return 0;
        }
    return 2;
}

// canary FAULT: does what one of the tools has to report. A tool that does not, finds nothing in the tests
// either.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

// Kept from the optimiser, which would see through each of these.
static int *volatile block;
static volatile int largest = 2147483647;
static int shared;

int main(int argc, char **argv)
{
    const std::string fault = argc == 2 ? argv[1] : "";
    block = static_cast<int *>(std::malloc(64));
    if (fault == "overrun")
        block[16] = 1;
    std::free(fault == "leak" ? nullptr : block);
    block = nullptr;
    if (fault == "overflow")
        largest = largest + 1;
    if (fault == "race") {
        std::thread other([] { ++shared; });
        ++shared;
        other.join();
    }
    std::puts("no report so far");
    return 0;
}

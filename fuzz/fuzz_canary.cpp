// Reads the byte behind its input when that begins with four certain ones: a run that does not find this
// would find nothing.
#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 4 || memcmp(data, "velk", 4) != 0)
        return 0;
    [[maybe_unused]] const volatile uint8_t seen = data[size];
    return 0;
}

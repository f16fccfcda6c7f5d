// Loses a block, for the test that the leak check of this build works.
#include <cstdlib>

int main()
{
    void *volatile block = std::malloc(64);
    block = nullptr;
    return block == nullptr ? 0 : 1;
}

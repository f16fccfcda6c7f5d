// What format, clang-tidy and cppcheck each have to refuse; scripts/lint shows it to them. Built into nothing.
int Canary(int count);

int Canary(int count) {
    int numbers[4] = {};
    int *none = nullptr;
    if (count > 4)
        return *none;
    return numbers[4];
}

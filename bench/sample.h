// What the benchmarks work on: texts of a given size, and configurations over them.
#ifndef VELK_BENCH_SAMPLE_H
#define VELK_BENCH_SAMPLE_H

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "velk32.h"

// How the items of a profile file are spread over sections.
enum class Shape : int64_t { FewItemsASection, OneSection, OneItemASection };

// The text of a profile file, and each place of an item in it.
struct ProfileText {
    struct Place {
        std::string section, item;
    };
    std::string text;
    std::vector<Place> places; // in file order

    // Of at least `bytes`, up to the end of a section.
    ProfileText(Shape shape, size_t bytes);
};

// A fresh directory, removed with all that is in it.
struct Folder {
    std::string path;

    Folder();
    ~Folder();
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    // Gives the path of the file.
    [[nodiscard]] std::string Write(const std::string &name, const std::string &bytes) const;
};

// A definition directory with one class, "C".
struct DefinitionFiles {
    Folder folder;
    size_t bytes; // of the two definition files

    DefinitionFiles(const std::string &keys, const std::string &options);

    // An engine that has loaded the class, with a configuration of it; ends the program on failure.
    Config *Open(ConfigEngine **engine) const;
};

// A class with a loaded configuration.
struct Sample {
    DefinitionFiles definitions;
    ConfigEngine *engine = nullptr;
    Config *config = nullptr;

    Sample(const std::string &keys, const std::string &options, const std::string &registers);
    ~Sample();
    Sample(const Sample &) = delete;
    Sample &operator=(const Sample &) = delete;

    [[nodiscard]] VRegTable *Table() const;
};

// The id of the n-th register, from 0; that of a text where `isText`.
uint32_t RegisterId(uint32_t n, bool isText = false);

// The lines of `count` registers in a save file; each `textEvery`-th is a text of 16 characters, none for 0.
std::string Registers(uint32_t count, uint32_t textEvery = 0);

// The name of the n-th key or option. It ends with five letters, which spread over the chains of a name table
// as digits would not.
std::string KeyName(uint32_t n);
std::string OptionName(uint32_t n);

// The section of the n-th key, which is the low byte of the n-th register.
std::string KeySection(uint32_t n);

// The section of the n-th option over the n-th key: a range, or what else stands behind "ValidValuesType".
std::string OptionSection(uint32_t n, const std::string &rules = "Range\ndefault = 0:1:255\n");

// Puts items into an order that no cache foresees, the same in every run.
template <typename Item> void Shuffle(std::vector<Item> *items)
{
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): figures are to be compared
    std::shuffle(items->begin(), items->end(), random);
}

// Ends the program with the name of a step that has failed.
void Require(bool holds, const char *step);

#endif

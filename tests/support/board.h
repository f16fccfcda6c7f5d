// Boards that exist in the test alone: definition files in a directory of their own, and an accessor
// that answers as the test says.
//
// Registers are written as texts, in hexadecimal: "10=5 11*=ff 0B000001=abc 0F000001=1,2". A star marks a
// modified register, a value of "-" is a null string or list.
#ifndef VELK_TESTS_SUPPORT_BOARD_H
#define VELK_TESTS_SUPPORT_BOARD_H

// What nearly every test uses comes with it.
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "tests/support/script.h"
#include "tests/support/system.h"
#include "velk32.h"

// Whether the tests are built for the sanitizer of this.
inline bool IsSanitizedFor(const std::string &what)
{
    return std::string(VELK_SANITIZERS).find(what) != std::string::npos;
}

std::string ReadFile(const std::string &path);
std::vector<std::string> Split(const std::string &text, char separator);

// A fresh directory, removed with all that is in it.
struct Directory {
    std::string path;

    Directory();
    ~Directory();
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    [[nodiscard]] std::string Path(const std::string &name) const
    {
        return path + "/" + name;
    }
    [[nodiscard]] std::string Read(const std::string &name) const
    {
        return ReadFile(Path(name));
    }
    void Write(const std::string &name, const std::string &bytes) const;
    // A copy of the scripted accessor that lacks an entry point; none for "". Gives what a catalogue names.
    [[nodiscard]] std::string Module(const std::string &name, const std::string &missing = "") const;
};

// Every name in a directory, sorted, a blank behind each.
std::string Names(const Directory &directory);

// Appends registers to the table in a place, or makes one. False without memory, with those that there was
// memory for.
bool Table_Append(const std::string &text, VRegTable **place);
VRegTable *Table_FromText(const std::string &text);
std::string Table_Text(const VRegTable *table);

// `text` with `what`, which has to be there, replaced.
std::string Edited(std::string text, const std::string &what, const std::string &by);

template <typename Type> VelkWord Word(const Type *reference)
{
    return reinterpret_cast<VelkWord>(reference);
}

// A directory, a script, an engine once it is started, and a configuration once a class is opened. What
// the library holds when the last desk is cleared, but did not before the first, is a failure.
struct Desk {
    const int64_t liveBefore = LiveAllocations();
    Directory directory;
    Script answers = {};
    Script *const previous = std::exchange(script, &answers);
    ConfigEngine *engine = nullptr;
    Config *config = nullptr;

    ~Desk();

    StatusCode Start(const std::string &catalogue);
    StatusCode Open(const char *className); // in place of the configuration so far
    [[nodiscard]] StatusCode Load(uint32_t first = 0, uint32_t second = 0) const
    {
        return VelkLoadCurrentConfig(config, first, second);
    }
    [[nodiscard]] StatusCode Save(uint32_t first = 0, uint32_t second = 0) const
    {
        return VelkSaveCurrentConfig(config, first, second);
    }
    // Their file is called "file".
    [[nodiscard]] StatusCode LoadFile(const std::string &key = "k") const
    {
        return VelkLoadFromFile(config, directory.Path("file").c_str(), key.c_str());
    }
    [[nodiscard]] StatusCode SaveFile(const std::string &key = "k") const
    {
        return VelkSaveToFile(config, directory.Path("file").c_str(), key.c_str());
    }
    void Clear();

    // Carries out commands, separated by blanks, and gives their results. "." gives the registers; "Name"
    // reads an option and "#Name" a key, "!-3" is a failure; "Name=value" sets it and gives the status. A
    // value is a number, 'text or (list; '- and (- are null.
    [[nodiscard]] std::string Run(const std::string &commands) const;
};

// A class "C" over "keys.ini", "options.ini" and "more.ini", and one configuration of it, which is loaded
// if `registers` is not null.
struct Board : Desk {
    StatusCode status; // of the class

    Board(const std::string &keys, const std::string &options, const char *registers,
          const std::string &moreOptions = "");
};

// Keys for every kind of register, and registers for them; none for the key Gone.
extern const char sampleKeys[], sampleRegisters[];

// The section of an option in an option file.
std::string Option(const std::string &name, const std::string &keys, const std::string &type,
                   const std::string &rules);

// Expects of a new board that its class gives `results` as its status, or loads and gives them in a run.
void Board_Expect(const std::string &keys, const std::string &options, const char *registers,
                  const std::string &commands, const std::string &results);

#endif

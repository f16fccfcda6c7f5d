// Boards that exist in the test alone: definition files in a directory of their own, and an accessor
// that answers as the test says.
//
// Registers are written as texts, in hexadecimal: "10=5 11*=ff 0B000001=abc 0F000001=1,2". A star marks a
// modified register, a value of "-" is a null string or list.
#ifndef VELK_TESTS_SUPPORT_BOARD_H
#define VELK_TESTS_SUPPORT_BOARD_H

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "velk32.h"

// A fresh directory, removed with all that is in it.
struct Directory {
    std::string path;

    Directory();
    ~Directory();
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    [[nodiscard]] std::string Path(const std::string &name) const;
    void Write(const std::string &name, const std::string &bytes) const;
    [[nodiscard]] std::string Read(const std::string &name) const;
    // A copy of the scripted accessor that lacks an entry point; none for "". Gives what a catalogue names.
    [[nodiscard]] std::string Module(const std::string &name, const std::string &missing = "") const;
};

// The answers of the scripted accessor, and what it was asked.
struct Script {
    StatusCode initialize, close, createSession, read, write, loadFromFile, setInternal;
    const char *registers; // what Cfg_Read leaves in its place; null: nothing
    const char *oldFile;   // what Cfg_LoadFromFile leaves
    const char *internal;  // what Cfg_SetInternalVRegs adds, growing the table
    std::string calls;     // in order, a blank behind each

    // The calls so far, which are then forgotten.
    std::string TakeCalls();
};
extern Script *script; // in force: that of the latest desk

VRegTable *Table_FromText(const char *text);
VRegTable *Table_Add(VRegTable *table, const char *text); // the table, grown
std::string Table_Text(const VRegTable *table);

// The place of the table, with which a configuration begins.
VRegTable *&TableOf(Config *config);

bool IsModuleLoaded(const std::string &module);

template <typename Type> VelkWord Word(const Type *reference)
{
    return reinterpret_cast<VelkWord>(reference);
}

// A directory, a script, and an engine once it is started. Whatever the library holds in the end, but did
// not at the start, is a failure.
struct Desk {
    const int64_t liveBefore = LiveAllocations();
    Directory directory;
    Script answers = {};
    Script *const previous;
    ConfigEngine *engine = nullptr;

    Desk();
    ~Desk();
    Desk(const Desk &) = delete;
    Desk &operator=(const Desk &) = delete;

    StatusCode Start(const std::string &catalogue);
};

// A class "C" over "keys.ini", "options.ini" and "more.ini", and one configuration of it, which is loaded
// if `registers` is not null.
struct Board : Desk {
    Config *config = nullptr;
    StatusCode status; // of the creation

    Board(const std::string &keys, const std::string &options, const char *registers,
          const std::string &moreOptions = "");
    ~Board();

    // Carries out commands, separated by blanks, and gives their results. "." gives the registers; "Name"
    // reads an option and "#Name" a key, "!-3" is a failure; "Name=value" sets it and gives the status. A
    // value is a number, 'text or (list, or "null".
    [[nodiscard]] std::string Run(const std::string &commands) const;
};

// Expects of a new board that its class gives `results` as its status, or loads and gives them in a run.
void Board_Expect(const std::string &keys, const std::string &options, const char *registers,
                  const std::string &commands, const std::string &results);

// Makes the first allocation of `call` fail, then the second, until the call succeeds without a failure.
// After each failure `check` gets the status.
template <typename Call, typename Check> void FailEachAllocation(Call call, Check check)
{
    for (int64_t nth = 1; !testing::Test::HasFailure(); ++nth) {
        SCOPED_TRACE("allocation " + std::to_string(nth));
        StatusCode status;
        bool fired;
        {
            const FailNthAllocation fail(nth);
            status = call();
            fired = fail.Fired();
        }
        if (!fired) {
            EXPECT_EQ(status, 0);
            return;
        }
        check(status);
    }
}

#endif

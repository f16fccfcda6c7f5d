// What ends a command before its time, and the exit statuses that tell it.
#ifndef VELK_TOOLS_FAILURE_H
#define VELK_TOOLS_FAILURE_H

#include "velk32.h"

#include <string>

enum ExitStatus {
    ExitDone = 0,
    ExitDiffers = 1,      // two configurations differ, or --strict met a value that would be moved
    ExitUsage = 2,        // the command line, or standard input or output
    ExitEngine = 3,       // the engine refused: definitions, values, save files
    ExitBoard = 4,        // the board or its accessor refused
    ExitNotAsWritten = 5, // what was read back is not what was written
    ExitInterrupted = 130 // by a signal, or by an answer other than yes; nothing was written
};

// Thrown. `message` says what was being done, to what, and what went wrong, `next` what to do about it;
// together they are one sentence. `details` are lines below it.
struct Failure {
    ExitStatus exit;
    std::string message;
    std::string next = {};
    StatusCode code = 0; // of the engine or the accessor; 0: none
    std::string details = {};
};

[[noreturn]] void Fail(const Failure &failure);

// The message of a status code, and the code.
std::string Status_Text(StatusCode code);

// The message alone. Codes for which the engine has no text get one here.
std::string Status_Message(StatusCode code);

// Whether a code is the answer of the accessor, whoever asked it.
bool Status_IsAccessors(StatusCode code);

// A failure of the engine or, where `exit` says so, of a board: "cannot DOING: MESSAGE (CODE)", with what to
// do about the code.
Failure Failure_Of(ExitStatus exit, const std::string &doing, StatusCode code);

#endif

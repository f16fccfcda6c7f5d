// What a command has to say: on standard output at its end, and warnings on standard error as they come; or,
// with --json, all of it as one document.
#ifndef VELK_TOOLS_OUTPUT_H
#define VELK_TOOLS_OUTPUT_H

#include "tools/velk/failure.h"
#include "tools/velk/layout.h"
#include "tools/velk/session.h"

#include <nlohmann/json.hpp>

#include <string>

using Json = nlohmann::ordered_json;

struct Output {
    bool isJson = false;
    bool isColoured = false;
    size_t width = 80; // of the terminal, in columns
    std::string text = {};
    std::string truth = {}; // of what was to be written: a line below a failure
    Json document = Json::object();
};

// Looks at the terminal of standard output and at the environment. A document is the same on all of them.
Output Output_Make(bool isJson);

// What follows is laid out for standard error.
void Output_LayOutForErrors(Output *output);

void Output_Table(Output *output, const Table &table);

// A line behind what was said so far; it is broken to the terminal.
void Output_Line(Output *output, const std::string &line);

// "velk: MESSAGE." with the lines of details below it.
void Output_Warn(Output *output, const std::string &message, const std::string &details = "");

// The sentence of a failure, and the lines below it, as standard error gets them.
std::string Failure_Text(const Failure &failure);
Json Json_OfFailure(const Failure &failure);

// The document as it stands, on lines of its own.
std::string Document_Text(const Json &document);

// The failure takes the place of what the command would have said.
void Output_Fail(Output *output, const Failure &failure);

// Writes to a stream at once; false: it takes nothing more.
bool Stream_Write(int descriptor, const std::string &text);

// Writes all that is due on standard output. Gives `status`, or that of an output that takes nothing more.
ExitStatus Output_Finish(Output *output, ExitStatus status);

// A text as a member; beside one that is no UTF-8 the exact bytes, as MEMBERHex.
void Json_PutText(Json *object, const std::string &member, const std::string &bytes);

Json Json_OfPlace(const Session &session, const Place &place);
Json Json_OfValue(const Value &value, const Words &words);
Json Json_OfValid(const ValidNow &valid, const Words &words);
Json Json_OfStatus(StatusCode code);

// The value as a member, and the status as MEMBERError; one of the two is null.
void Json_PutReading(Json *object, const std::string &member, const Reading &reading, const Words &words);

// "board 5, class VxiDevice (examples/vxi)", with a capital.
std::string Place_Heading(const Session &session, const Place &place);

// Says what a transfer warned of.
void Output_WarnOfStatus(Output *output, const std::string &what, StatusCode status);

#endif

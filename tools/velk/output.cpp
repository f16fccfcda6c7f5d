#include "tools/velk/output.h"

#include "tools/velk/bytes.h"
#include "tools/velk/signals.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

constexpr size_t UsualWidth = 80;
constexpr size_t LeastWidth = 20;

// What COLUMNS states, or else the terminal.
size_t TerminalWidth(int descriptor)
{
    const char *columns = getenv("COLUMNS");
    uint32_t stated = 0;
    if (columns != nullptr && Number_Read(columns, &stated) && stated > 0)
        return std::max<size_t>(stated, LeastWidth);
    winsize size = {};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return std::max<size_t>(size.ws_col, LeastWidth);
    return UsualWidth;
}

bool IsColoured(int descriptor)
{
    const char *off = getenv("NO_COLOR");
    const char *terminal = getenv("TERM");
    return (off == nullptr || *off == '\0') && terminal != nullptr && strcmp(terminal, "dumb") != 0 &&
           isatty(descriptor) == 1;
}

} // namespace

Output Output_Make(bool isJson)
{
    Output output;
    output.isJson = isJson;
    output.width = isJson ? UsualWidth : TerminalWidth(STDOUT_FILENO);
    output.isColoured = IsColoured(STDOUT_FILENO);
    if (isJson) {
        output.document = {{"schema", 1}};
        output.document["command"] = nullptr;
        output.document["warnings"] = Json::array();
    }
    return output;
}

void Output_LayOutForErrors(Output *output)
{
    if (output->isJson)
        return;
    output->width = TerminalWidth(STDERR_FILENO);
    output->isColoured = IsColoured(STDERR_FILENO);
}

void Output_Table(Output *output, const Table &table)
{
    output->text += Table_Lines(table, output->width, output->isColoured);
}

void Output_Line(Output *output, const std::string &line)
{
    output->text += Text_Wrapped(line, output->width);
}

void Output_Warn(Output *output, const std::string &message, const std::string &details)
{
    if (output->isJson)
        output->document["warnings"].push_back(details.empty() ? message + "." : message + ".\n" + details);
    else
        Stream_Write(STDERR_FILENO, fmt::format("velk: {}.\n{}", message, details));
}

std::string Failure_Text(const Failure &failure)
{
    const char *end = failure.next.ends_with('?') ? "" : ".";
    const std::string next = failure.next.empty() ? "" : "; " + failure.next;
    return fmt::format("velk: {}{}{}\n{}", failure.message, next, end, failure.details);
}

Json Json_OfFailure(const Failure &failure)
{
    Json json = {{"exit", failure.exit}, {"code", failure.code == 0 ? Json() : Json(failure.code)}};
    json["message"] = failure.message;
    json["next"] = failure.next;
    json["details"] = failure.details;
    return json;
}

std::string Document_Text(const Json &document)
{
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

// What was found out until then goes, but for what was written.
static Json Document_OfFailure(const Json &document, const Failure &failure)
{
    Json kept = Json::object();
    for (const char *member : {"schema", "command", "warnings", "outcome"})
        if (document.contains(member))
            kept[member] = document[member];
    kept["error"] = Json_OfFailure(failure);
    return kept;
}

void Output_Fail(Output *output, const Failure &failure)
{
    Failure told = failure;
    told.details += output->truth;
    output->text.clear();
    if (output->isJson)
        output->document = Document_OfFailure(output->document, told);
    else
        Stream_Write(STDERR_FILENO, Failure_Text(told));
}

bool Stream_Write(int descriptor, const std::string &text)
{
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        done += count < 0 ? 0 : static_cast<size_t>(count);
    }
    return true;
}

// What the command did stands, whoever heard of it.
static std::string WhatIsLost(const Output &output)
{
    if (output.document.contains("outcome"))
        return "what it should have said is lost, but this is true: " +
               output.document["outcome"]["result"].get<std::string>();
    return "what it should have said is lost, so run the command again";
}

ExitStatus Output_Finish(Output *output, ExitStatus status)
{
    if (output->isJson) {
        if (!output->document.contains("error"))
            output->document["error"] = nullptr;
        output->text = Document_Text(output->document);
    }
    Signals_Wait(); // else half of it would stand ahead of the words of an interrupt
    if (Stream_Write(STDOUT_FILENO, output->text))
        return status;
    Stream_Write(STDERR_FILENO, fmt::format("velk: cannot write to standard output: {}; {}.\n",
                                            strerror(errno), WhatIsLost(*output)));
    return status == ExitDone || status == ExitDiffers ? ExitUsage : status;
}

void Json_PutText(Json *object, const std::string &member, const std::string &bytes)
{
    const std::string text = Bytes_AsUtf8(bytes);
    (*object)[member] = text;
    if (text != bytes)
        (*object)[member + "Hex"] = Bytes_AsHex(bytes);
}

Json Json_OfPlace(const Session &session, const Place &place)
{
    Json json = Json::object();
    Json_PutText(&json, "definitions", session.catalogue.directory);
    Json_PutText(&json, "class", session.className);
    json["kind"] = place.kind == Place::Board ? "board" : place.kind == Place::SaveFile ? "file" : "none";
    if (place.kind == Place::Board)
        json["board"] = {place.first, place.second};
    if (place.kind == Place::SaveFile) {
        Json_PutText(&json, "file", place.file);
        Json_PutText(&json, "key", place.key);
    }
    return json;
}

// Beside a number its word, if it has one.
static void PutNumber(Json *object, uint32_t number, const Words &words)
{
    (*object)["number"] = number;
    const std::string word = Words_Of(words, number);
    if (!word.empty())
        Json_PutText(object, "word", word);
}

Json Json_OfValue(const Value &value, const Words &words)
{
    Json json = Json::object();
    if (value.kind == ValueKindNumber) {
        json["kind"] = "number";
        PutNumber(&json, value.number, words);
    } else if (value.kind == ValueKindList) {
        json["kind"] = "list";
        json["list"] = value.list;
    } else {
        json["kind"] = "text";
        json["text"] = nullptr;
        if (!value.isMissing)
            Json_PutText(&json, "text", value.text);
    }
    return json;
}

Json Json_OfValid(const ValidNow &valid, const Words &words)
{
    Json json = {{"kind", Valid_KindName(valid.kind)}};
    if (valid.kind == ValidKindRange) {
        json["low"] = valid.low;
        json["step"] = valid.step;
        json["high"] = valid.high;
    } else if (valid.kind == ValidKindList) {
        json["numbers"] = Json::array();
        for (const uint32_t number : valid.numbers) {
            Json entry = Json::object();
            PutNumber(&entry, number, words);
            json["numbers"].push_back(entry);
        }
    } else {
        json["any"] = valid.isAny;
        if (valid.kind == ValidKindListSet)
            json["lists"] = valid.lists;
        else if (!valid.isAny)
            Json_PutText(&json, "text", valid.text);
    }
    return json;
}

Json Json_OfStatus(StatusCode code)
{
    return {{"code", code}, {"message", Status_Message(code)}};
}

void Json_PutReading(Json *object, const std::string &member, const Reading &reading, const Words &words)
{
    (*object)[member] = reading.status == 0 ? Json_OfValue(reading.value, words) : Json();
    (*object)[member + "Error"] = reading.status == 0 ? Json() : Json_OfStatus(reading.status);
}

std::string Place_Heading(const Session &session, const Place &place)
{
    std::string heading = place.kind == Place::Nowhere ? "" : Place_Shown(place) + ", ";
    heading += fmt::format("class {} ({})", Bytes_Shown(session.className),
                           Bytes_Shown(session.catalogue.directory));
    return Bytes_Capital(heading);
}

void Output_WarnOfStatus(Output *output, const std::string &what, StatusCode status)
{
    if (status > 0)
        Output_Warn(output, fmt::format("{}: {}", what, Status_Text(status)));
}

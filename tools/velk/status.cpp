#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"

#include <fmt/format.h>

ExitStatus Run_Status(const Arguments &arguments, Output *output)
{
    if (output->isJson)
        output->document["statuses"] = Json::array();
    Table table = {{"Code", "Message"}, {}};
    for (const std::string &text : arguments.names) {
        uint32_t number;
        if (!Number_Read(text, &number))
            throw Failure{ExitUsage, fmt::format("cannot read the status code '{}'", Bytes_Shown(text)),
                          "give a number, such as -102"};
        const auto code = static_cast<StatusCode>(number);
        table.rows.push_back({std::to_string(code), Status_Message(code)});
        if (output->isJson)
            output->document["statuses"].push_back(Json_OfStatus(code));
    }
    Output_Table(output, table);
    return ExitDone;
}

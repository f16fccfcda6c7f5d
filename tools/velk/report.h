// What two states of a configuration have between them, seen through its options.
#ifndef VELK_TOOLS_REPORT_H
#define VELK_TOOLS_REPORT_H

#include "tools/velk/output.h"

#include <set>

// One option that moved, or whose valid values did.
struct OptionChange {
    OptionState before, after;
    bool isMoved;      // its value, or whether it can be read
    bool isValidMoved; // the valid values, or whether they can be told
};

struct Report {
    std::vector<OptionChange> changes;
    std::vector<OptionState> unreadable; // as they are afterwards
};

// Compares all options of two configurations of a class, but those of `apart`.
Report Report_Make(const Session &session, Config *before, Config *after, const std::set<std::string> &apart);

// Tells it under these heads: how things were, and how they are.
void Report_Show(const Report &report, const Session &session, const char *wasHead, const char *nowHead,
                 Output *output);

// Puts "changes" and "unreadable" into the document.
void Report_PutJson(const Report &report, const Session &session, Output *output);

#endif

// Words for the ways of the engine that surprise.
#ifndef VELK_TOOLS_VALID_NOTES_H
#define VELK_TOOLS_VALID_NOTES_H

#include "tools/velk/value.h"

#include <string>
#include <vector>

// What there is to know of these values, a sentence each: none where nothing surprises.
std::vector<std::string> Valid_Notes(const ValidNow &valid);

// Why `asked` was moved to `stored`, where that is not the nearest, or does not last; or an empty text.
std::string Valid_NoteOnMove(const ValidNow &valid, const Value &asked, const Value &stored);

#endif

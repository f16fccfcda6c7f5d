// What can be wrong with a register table that an entry hands over. Each fault leaves a table that the
// library can release: payloads are of the kind that their ids say, and those that go are released.
#ifndef VELK_FAULTY_TABLE_FAULT_H
#define VELK_FAULTY_TABLE_FAULT_H

#include "velk32_accessor.h"

// The place of the table may hold null, and some look at no argument. Each gives 0, or -1 out of memory; the
// place holds null then.

// The registers behind the first `argument` are gone.
StatusCode Table_Shorten(VRegTable **place, uint32_t argument);

// A number is an empty text, a text an empty list, a list the number 0; the ids say so.
StatusCode Table_ChangeKinds(VRegTable **place, uint32_t argument);

// All registers of a kind bear the id of the first of them.
StatusCode Table_RepeatIds(VRegTable **place, uint32_t argument);

// Texts and lists are null.
StatusCode Table_DropPayloads(VRegTable **place, uint32_t argument);

// There is no table.
StatusCode Table_Drop(VRegTable **place, uint32_t argument);

#endif

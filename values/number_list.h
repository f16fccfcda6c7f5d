// The number-list notation of definition and save files: plain numbers, stepped ranges `:1:2:9` and
// doubling ranges `^1:64`, separated by commas, in parentheses or not.
#ifndef VELK_VALUES_NUMBER_LIST_H
#define VELK_VALUES_NUMBER_LIST_H

#include "velk32.h"

// Takes one value into `target`: 0, or a negative status.
using NumberAppendFn = StatusCode (*)(void *target, uint32_t value);

// Hands the values of a list to `append` in the order of the text, which is cut up. `numbersLeft` goes
// down with each. Gives 0; -10 malformed; -1 `numbersLeft` is used up; or the status of `append`. The
// values handed over before a failure stay in `target`.
StatusCode NumberList_Parse(char *text, void *target, NumberAppendFn append, uint32_t *numbersLeft);

// The append for a target that is a List: 0, or -1.
StatusCode List_AppendNumber(void *target, uint32_t value);

#endif

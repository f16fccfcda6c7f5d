// The settings of a class: which module to wrap, and what goes wrong with it at which call.
#ifndef VELK_FAULTY_FAULT_PLAN_H
#define VELK_FAULTY_FAULT_PLAN_H

#include "velk32_accessor.h"

#include <cstddef>

// The entries that faults are for, in the order of their names.
enum Entry : uint8_t {
    EntryInitializeAccessor,
    EntryCloseAccessor,
    EntryCreateSession,
    EntryCloseSession,
    EntryRead,
    EntryWrite,
    EntryLoadFromFile,
    EntrySetInternalVRegs,
    EntryCount
};

struct FaultAction;

struct Fault {
    Entry entry;
    uint32_t nth; // call of the entry, from 1; 0: each
    const FaultAction *action;
    uint32_t argument;
};

struct FaultPlan {
    char *wraps;   // name of the module
    char *text;    // that the faults were read from
    Fault *faults; // in the order of the text
    size_t count;
};

// One call of an entry.
struct Call {
    const FaultPlan *plan;
    Entry entry;
    uint32_t nth;
};

// Reads the settings of a class and keeps no reference to it. The new plan is the caller's. Gives 0; -1 out
// of memory; -111 a setting is missing or malformed.
StatusCode FaultPlan_Read(ConfigClass *configClass, FaultPlan **out);

// Null is ignored.
void FaultPlan_Delete(FaultPlan *plan);

// Whether both say the same, to the letter.
bool FaultPlan_AreEqual(const FaultPlan *first, const FaultPlan *second);

// The code of the first fault that keeps the call from the wrapped module; 0: there is none.
StatusCode Call_Refuse(const Call *call);

// What becomes of a call that the wrapped module answered with `status`. Faults act on a 0 alone, in the
// order of the plan, up to the first that gives a code. `place` is null where no table is handed over.
StatusCode Call_Spoil(const Call *call, StatusCode status, VRegTable **place);

#endif

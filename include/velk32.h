/*
 * Velk: a table-driven configuration engine for the interface boards of instrument bus systems.
 *
 * A client works in this order: VelkInitializeConfigEngine on a definition directory;
 * VelkCreateConfig for a class of its catalogue; VelkLoadCurrentConfig or VelkLoadFromFile; any
 * number of reads and sets of keys and options; VelkSaveCurrentConfig or VelkSaveToFile;
 * VelkDiscardConfig; VelkCloseConfigEngine. A configuration is the client's working copy: nothing
 * reaches a board or a file before the client says so.
 *
 * What holds for every function:
 *
 * Results. A StatusCode of 0 is success, a negative one a failure, a positive one a warning beside a
 * finished operation. A failed call changes nothing and writes no out argument, except where its
 * comment says so. VelkStrError gives the message of any code. Handles, texts and out arguments are
 * not tested for null, except where null is said to have a meaning.
 *
 * Texts are zero-terminated 8-bit strings. Texts and records passed in are looked at during the call
 * and stay the caller's; those handed out belong to the library, for as long as the comment says.
 *
 * Numbers are unsigned and 32 bits wide. Where one travels in a VelkWord, it is zero-extended when
 * handed out, and only the low 32 bits are looked at when passed in.
 *
 * Threads. The library starts no thread, takes no lock and has no scratch that calls share. Any thread
 * may make any call, also on what another thread made, and two calls may run at the same time. The
 * exceptions, which the client keeps apart:
 *
 * Two calls on one configuration, even if both only read. A duplicate is a call on both of its
 * configurations; reading a string or list that belongs to a configuration is a call on it, too.
 *
 * Two calls of VelkCreateConfig on one engine, if one of them loads a class: it is the first of its name,
 * or those before it failed. Calls on configurations that the engine has may go on meanwhile.
 *
 * VelkCloseConfigEngine and any other call on the engine or on a configuration of it, except
 * VelkDiscardConfig.
 *
 * Two calls that enter one accessor module, in whichever engines, unless the documentation of the module
 * allows it, as that of velkimage does. These are the VelkCreateConfig that loads a class,
 * VelkCloseConfigEngine, VelkLoadCurrentConfig, VelkSaveCurrentConfig and VelkLoadFromFile.
 *
 * Two calls on one list, string or register table of the client's own, if one of them changes or
 * releases it.
 *
 * What belongs to an engine or a class never changes: option names and references, rules and their valid
 * values may be read on any number of threads until the engine is closed. Saves to one regular file and
 * loads of it may run at the same time: a load gets one save, and the whole of it. Relative paths count
 * from the working directory of the process, which must not change during a call.
 */
#ifndef VELK32_H
#define VELK32_H

#include <stdint.h>

#define VELK_VERSION_MAJOR 1
#define VELK_VERSION_MINOR 0
#define VELK_VERSION_PATCH 0
#define VELK_VERSION "1.0.0"

#if defined(_WIN32)
#define VELK_CALL __cdecl
#if defined(VELK_BUILDING_LIBRARY)
#define VELK_API __declspec(dllexport)
#else
#define VELK_API __declspec(dllimport)
#endif
#else
#define VELK_CALL
#define VELK_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Types */

typedef int32_t StatusCode;

/* A word that holds a number or a reference, whichever its place says. */
typedef uintptr_t VelkWord;

/* The status codes that the engine raises itself, and those that accessors of boards and their
 * EEPROMs answer with. VelkStrError has texts for more, and none of their own for -16, -17, -18 and 4. */
enum {
    StatusOutOfMemory = -1,
    StatusNotLoaded = -2,
    StatusVRegNotFound = -3,
    StatusBadFile = -4,
    StatusIncompatibleFile = -5,
    StatusFileWriteFailed = -6,
    StatusBadKeyFile = -7,
    StatusBadOptionFile = -8,
    StatusUnknownOption = -9,
    StatusBadNumber = -10,
    StatusTooManyDependants = -11,
    StatusNoValidValue = -12,
    StatusUnknownKey = -13,
    StatusSeveralLists = -16, /* a set meets a rule that offers two or more lists */
    StatusWrongKind = -17,    /* the operation is not for this kind of option or register */
    StatusKindMismatch = -18, /* two kinds do not fit each other */
    StatusInternalError = -99,

    StatusResetNeeded = 1,
    StatusOldFileFormat = 2,
    StatusUserWindowModified = 3,
    StatusTooFewPlaces = 4, /* the array of names is too small */

    StatusHardwareInitFailed = -101,
    StatusHardwareAccessFailed = -102,
    StatusWrongHardware = -103,
    StatusBadHardwareConfig = -104,
    StatusNoPrivilege = -105,
    StatusEepromWriteFailed = -106,
    StatusEepromReadFailed = -107,
    StatusEepromInvalid = -108,
    StatusEepromBeyondRepair = -109,
    StatusUserHalfCorrupted = -110,
    StatusNoAccessorSettings = -111,
    StatusAccessorInUse = -112,
    StatusCrcMissing = 100,
    StatusUserHalfRepairable = 101,
    StatusFactoryOverride = 102,

    StatusEngineOutOfMemory = -201,
    StatusNoCatalogue = -202,
    StatusBadClass = -203,
    StatusAccessorLoadFailed = -204,
    StatusKeyLoadFailed = -205,
    StatusOptionLoadFailed = -206
};

/* What a value is: the kind of a register, of a key and of an option. */
enum ValueKind { ValueKindNumber = 0, ValueKindList = 1, ValueKindString = 2 };

/* How the valid values of an option are described. Options of kinds ValidKindRange and ValidKindList
 * are of ValueKindNumber, of ValidKindListSet of ValueKindList, of ValidKindString of
 * ValueKindString. */
enum ValidValuesKind { ValidKindRange = 0, ValidKindList = 1, ValidKindListSet = 2, ValidKindString = 3 };

/* A list of numbers. `items` is null or an array of its own, with room for at least `count` words. */
typedef struct List {
    int32_t count;
    uint32_t *items;
} List;

/*
 * A virtual register. Bits 27 to 24 of `id` give its kind: with bit 27 clear it holds a number, with
 * 0xB a reference to a string, with 0xF a reference to a List; other nibbles behave as numbers, but
 * no key can stand on them. With bits 31 to 28 all set the register is internal: a load from a save
 * file skips it. Several registers of a table may bear one id; they are told apart by their order,
 * the instance, which counts from 1.
 */
typedef struct VReg {
    uint32_t id;
    VelkWord value;
    uint32_t flags; /* VRegModified; the library touches no other bit */
} VReg;

enum { VRegModified = 1 };

/*
 * A table of virtual registers: one block, made by AllocateVRegTable, in which the slots follow the
 * header. The table owns the strings and lists of its slots below `count`. A negative `count`
 * counts as 0. Slots begin one VReg behind the start of the block, which is not `table + 1` where
 * references are 64 bits wide: `regs` is the way to them.
 */
typedef struct VRegTable {
    int32_t count;     /* slots in use */
    uint32_t capacity; /* slots that there is room for */
    VReg *regs;        /* the first slot, in the same block */
} VRegTable;

typedef struct ConfigEngine ConfigEngine;
typedef struct ConfigClass ConfigClass;
typedef struct Config Config;

/* The identity of an option, and of the valid values of one of its rules; valid while the engine is
 * open. Nothing is to be freed. */
typedef const struct OptionDef *VelkOptionRef;
typedef const struct ValidValues *VelkValidRef;

/* Bits of ChangeEntry.flags. */
enum {
    ChangeValueChanged = 1, /* another number, or another reference, which may hold equal contents */
    ChangeValidChanged = 2  /* another rule is in force, though it may offer the same values */
};

/* One option that a set is to report on. The caller fills the first two fields. */
typedef struct ChangeEntry {
    const char *name;        /* the option's name; not looked at if `optionRef` is not null */
    VelkOptionRef optionRef; /* the option, or null; never written */
    uint32_t flags;          /* out: ChangeValueChanged, ChangeValidChanged */
    VelkWord newValue;     /* out, with ChangeValueChanged only; a reference lives as VelkGetOptionEx says */
    uint32_t newValidKind; /* out, with ChangeValidChanged only: ValidKindRange and so on */
    VelkValidRef newValidRef; /* out, with ChangeValidChanged only */
} ChangeEntry;

/* Engine */

/**
 * Opens an engine on a definition directory and reads the catalogue "CfgClass.ini" in it. Classes
 * are loaded later, each when the first configuration of it is created.
 *
 * @param engine  receives the engine; the caller closes it with VelkCloseConfigEngine
 * @return 0; -201 out of memory; -202 the catalogue cannot be read or is malformed, or
 *         memory ran out over it
 */
VELK_API StatusCode VELK_CALL VelkInitializeConfigEngine(const char *directory, ConfigEngine **engine);

/**
 * Closes an engine: closes the accessors of its classes, newest class first, and releases all that
 * the engine owns. Of all calls only VelkDiscardConfig is still legal on its configurations.
 *
 * @return 0 always; the module of an accessor that refuses to close stays loaded
 */
VELK_API StatusCode VELK_CALL VelkCloseConfigEngine(ConfigEngine *engine);

/**
 * Looks a number up in a section of the catalogue, as the item "0x%X", and copies its text.
 *
 * @param config  any configuration of the engine, loaded or not
 * @param size    room in `buffer`, in bytes, with the terminator
 * @return 0; -203 no such section or item, or its text does not fit; `buffer` is untouched then
 */
VELK_API StatusCode VELK_CALL VelkTranslateValue(Config *config, const char *section, uint32_t value,
                                                 char *buffer, int32_t size);

/**
 * Gives a setting of a class to its accessor: any item of the class's section of the catalogue.
 *
 * @param value  receives the text, which belongs to the engine and lives until it is closed
 * @return 0; -203 no such item
 */
VELK_API StatusCode VELK_CALL CfgClass_GetAccessorData(ConfigClass *configClass, const char *item,
                                                       const char **value);

/* Configurations */

/**
 * Creates a configuration of a class, and loads the class if this is its first. The new
 * configuration holds no registers.
 *
 * @param className  name of the class's section in the catalogue
 * @param config     receives the configuration, which the caller ends with VelkDiscardConfig; null
 *                   after a failure
 * @return 0; -1 out of memory; -201 out of memory while the class is loaded; -203 no such class, or
 *         an item of it is missing or too long; -204 its accessor cannot be loaded or lacks an
 *         entry point; -205 a key file cannot be loaded; -206 an option file cannot be loaded; -9 an
 *         option is incomplete, or rules depend on each other in a circle or over more than 16
 *         options; or what the accessor answered when it was initialised
 */
VELK_API StatusCode VELK_CALL VelkCreateConfig(ConfigEngine *engine, const char *className, Config **config);

/** Releases a configuration and its registers. Legal after its engine was closed, too. @return 0 */
VELK_API StatusCode VELK_CALL VelkDiscardConfig(Config *config);

/**
 * Makes `destination` a copy of `source`, strings, lists and modified bits included. Both are
 * configurations of one class. With a source that is not loaded nothing is changed.
 *
 * @return 0; -1 out of memory, with `destination` as it was. A string or list for whose copy alone
 *         there is no memory is null in the copy.
 */
VELK_API StatusCode VELK_CALL VelkDuplicateConfig(Config *source, Config *destination);

/** @return 1 if the configuration holds registers from a board, a file or a copy, else 0 */
VELK_API int32_t VELK_CALL VelkIsConfigLoaded(Config *config);

/** @return 1 if the configuration is loaded and a register of it is marked as modified, else 0 */
VELK_API int32_t VELK_CALL VelkIsConfigModified(Config *config);

/**
 * Reads bits of a register, in place: nothing is shifted.
 *
 * @param config    a configuration, or, in an accessor, the place of a VRegTable reference
 * @param instance  which register of that id, from 1
 * @param mask      the bits asked for; 0xFFFFFFFF on a string or list register gives its reference,
 *                  which stays the table's and lives until the register is written again
 * @return 0; -2 no register table; -3 no such register
 */
VELK_API StatusCode VELK_CALL VelkGetBits(Config *config, uint32_t id, int32_t instance, uint32_t mask,
                                          VelkWord *value);

/**
 * Replaces the bits of a register under a mask, and marks the register as modified if they change.
 *
 * A string or list register under the mask 0xFFFFFFFF takes the reference as it is: the table owns
 * it from then on, and the caller has to release the one that it replaces. VelkSetKey does both.
 *
 * @param bits  the new bits, in place; those outside the mask are ignored
 * @return 0; -2 no register table; -3 no such register
 */
VELK_API StatusCode VELK_CALL VelkSetBits(Config *config, uint32_t id, int32_t instance, uint32_t mask,
                                          VelkWord bits);

/* Boards and files */

/**
 * Fills a configuration from the board.
 *
 * @param first, second  what the class's accessor wants to know to find the board
 * @return 0, or a positive warning of the accessor, with the configuration loaded. A failure to open
 *         a session leaves the configuration as it was; any other result of the read than 0, a
 *         positive one included, is handed on and leaves it not loaded, with the old registers gone.
 */
VELK_API StatusCode VELK_CALL VelkLoadCurrentConfig(Config *config, uint32_t first, uint32_t second);

/**
 * Writes a configuration to the board. The configuration stays as it is, modified bits included.
 *
 * @return 0; a positive warning or a failure of the accessor; -2 the configuration is not loaded
 */
VELK_API StatusCode VELK_CALL VelkSaveCurrentConfig(Config *config, uint32_t first, uint32_t second);

/**
 * Replaces the registers of a configuration by those of a save file, each marked as modified. Internal
 * registers come from the accessor, if it supplies them, and are marked as it says.
 *
 * @param key  has to equal the key that the file was saved with, byte for byte
 * @return 0; 2 the accessor read the file, which is in an older format; -1 out of memory, or lists of
 *         more than 4,194,304 numbers together; -4 no readable save file, or memory ran out while it
 *         was read; -5 the key differs; -10 a malformed list; or the accessor's failure to supply the
 *         internal registers. After a failure the configuration is as it was.
 */
VELK_API StatusCode VELK_CALL VelkLoadFromFile(Config *config, const char *file, const char *key);

/**
 * Saves a configuration to a text file, which replaces an existing one as a whole or not at all, and
 * takes its permission bits. A symbolic link is followed. What is no regular file, such as a pipe, is
 * written in place.
 *
 * @param key  any text, for VelkLoadFromFile to compare
 * @return 0; -1 out of memory; -2 the configuration is not loaded; -6 the file cannot be written, or
 *         memory ran out over it; an existing one is as it was
 */
VELK_API StatusCode VELK_CALL VelkSaveToFile(Config *config, const char *file, const char *key);

/* Keys */

/**
 * Reads a key.
 *
 * @param value  receives a number, or a reference to a string or List. A reference stays the
 *               configuration's and lives until the key is written to another value or the registers
 *               go; a null one means that the register holds none.
 * @return 0; -13 no such key; -2 no register table; -3 the register of the key, or of one that it is
 *         computed from, is missing; -99 the register's bits fit none of the key's values, or a key that
 *         it is computed from is missing, no number, or computed from itself
 */
VELK_API StatusCode VELK_CALL VelkGetKey(Config *config, const char *name, VelkWord *value);

/**
 * Writes a key, and nothing but the key: no rule is asked, no option follows.
 *
 * A number beyond the width of the key's field is cut to it. A string or list is copied; writing one
 * equal to the present one leaves the stored one, and references to it, in place.
 *
 * @return 0; -13 no such key; -2 no register table; -3 and -99 as for VelkGetKey; -99 also if it is not
 *         a value of this key; -1 out of memory, or a null string or list
 */
VELK_API StatusCode VELK_CALL VelkSetKey(Config *config, const char *name, VelkWord value);

/* Reading options */

/**
 * Reads an option of kind number.
 *
 * @return 0; -9 no such option; -17 it is no number; -2 no register table; -18 its get method leads
 *         to a value of another kind; or why its key cannot be read (-3, -99; see VelkGetKey)
 */
VELK_API StatusCode VELK_CALL VelkGetOption(Config *config, const char *name, uint32_t *value);

/**
 * Reads an option of any kind.
 *
 * @param kind        the ValueKind expected, or -1 for any
 * @param value       receives a number, or a reference to a string or List, which stays the
 *                    configuration's and lives until the option's register is written to another
 *                    value or the registers go
 * @param actualKind  null, or receives the option's ValueKind, also when the value cannot be read, but not
 *                    when `kind` is another
 * @return as VelkGetOption, but in place of -17 -18 if `kind` is neither -1 nor the option's
 */
VELK_API StatusCode VELK_CALL VelkGetOptionEx(Config *config, const char *name, int32_t kind, VelkWord *value,
                                              int32_t *actualKind);

/**
 * Tells which values an option may take in the present state of the configuration.
 *
 * @param validKind  receives the option's kind of valid values, also when no rule can be told
 * @param validRef   receives the identity of the rule in force, for VelkDataFromValidValueRef
 * @return 0; -9 no such option; -2 no register table; -99 no rule holds; -18 a rule tests an option
 *         that is no number; or why an option that a rule tests cannot be read
 */
VELK_API StatusCode VELK_CALL VelkQueryOptionValidValues(Config *config, const char *name,
                                                         uint32_t *validKind, VelkValidRef *validRef);

/** Gives the identity of an option, for ChangeEntry.optionRef. @return 0; -9 no such option */
VELK_API StatusCode VELK_CALL VelkRefFromOptionName(Config *config, const char *name,
                                                    VelkOptionRef *optionRef);

/** Counts the options of the configuration's class. @return 0 */
VELK_API StatusCode VELK_CALL VelkNumberOfOptions(Config *config, uint32_t *count);

/**
 * Gives the names of the options of the configuration's class, in an order that is fixed for a class.
 *
 * @param names     receives references to the names, which belong to the class and live until the
 *                  engine is closed
 * @param capacity  room in `names`, in references
 * @return 0; 4 there are more options, and `capacity` names are stored
 */
VELK_API StatusCode VELK_CALL VelkGetOptionNames(Config *config, const char **names, uint32_t capacity);

/**
 * Copies the values of a "List" rule.
 *
 * @param config   not looked at
 * @param listRef  word 1 of what VelkDataFromValidValueRef gave
 * @param dest     receives `count` words
 * @param count    word 0 of it; below 1 nothing is copied
 * @return 0
 */
VELK_API StatusCode VELK_CALL VelkDataFromValueListRef(Config *config, const uint32_t *listRef,
                                                       uint32_t *dest, int32_t count);

/**
 * Copies the three words that describe the valid values of a rule.
 *
 *     ValidKindRange    low, step, high; no value is valid if step is 0
 *     ValidKindList     number of values; reference to them, for VelkDataFromValueListRef; 0
 *     ValidKindListSet  number of lists (-1 any list, 0 none), reference to an array of List, 0
 *     ValidKindString   the one valid text, or null for any text; 0; 0
 *
 * A count is read as int32_t. References belong to the class and live until the engine is closed.
 *
 * @param config  not looked at
 * @param dest    receives three words
 * @return 0
 */
VELK_API StatusCode VELK_CALL VelkDataFromValidValueRef(Config *config, VelkValidRef validRef,
                                                        VelkWord *dest);

/* Setting options */

/**
 * Sets an option of kind number, all or nothing.
 *
 * The value is moved onto the values that are valid now, written to the option's keys, and every
 * option whose rules test this one is set again to the value that it had, and so on downwards. A
 * value is never refused for not being valid; read the option again to see what was stored. A rule
 * that offers no value makes the set a success that writes nothing.
 *
 * After a success references to strings and lists of options that moved are dead; after a failure
 * that came while writing, all references into the configuration are.
 *
 * @return 0; -9 no such option; -17 it is no number; -2 no register table; -99 no rule holds, a key
 *         cannot take or show a value, or the options that follow form a circle, a way of more than
 *         16, or more than 1,048,576 applications; -18 a rule, get method or binding mixes kinds; -16
 *         a rule offers two or more lists; -3 a register is missing; -1 out of memory, or a string or
 *         list option that follows holds none where any would be valid, or the set would replace a
 *         further string or list when it has replaced more than 64 MiB of them. After a failure the
 *         registers are as they were.
 */
VELK_API StatusCode VELK_CALL VelkSetOption(Config *config, const char *name, uint32_t value);

/**
 * Sets an option of any kind, as VelkSetOption does.
 *
 * @param kind   the option's ValueKind; there is no wildcard
 * @param value  a number, or a reference to a string or List, which is copied
 * @return as VelkSetOption, with -17 if `kind` is not the option's, and -1 for a null string or list
 *         where any would be valid
 */
VELK_API StatusCode VELK_CALL VelkSetOptionEx(Config *config, const char *name, int32_t kind, VelkWord value);

/**
 * Sets an option as VelkSetOption does, and reports which of the listed options moved with it.
 *
 * Fields `newValue`, `newValidKind` and `newValidRef` of an entry are written only with their flag.
 *
 * @param entries     the options to report on; `flags` is cleared before the set
 * @param entryCount  entries in the array; below 1 this is VelkSetOption
 * @return as VelkSetOption; -9 also if an entry names no option. A listed option that cannot be read,
 *         or for which no rule holds, gives its failure before anything is set; `flags` are cleared up
 *         to that entry. If that comes up after the set, the failure is returned and the set stands, the
 *         one such case: the entries ahead are reported, that one's rule may be, the later ones have
 *         `flags` 0. With a wrong name or kind of the option to set, or no table, all are untouched.
 */
VELK_API StatusCode VELK_CALL VelkSetOptionWithChangeList(Config *config, const char *name, uint32_t value,
                                                          ChangeEntry *entries, int32_t entryCount);

/** Sets an option of any kind as VelkSetOptionEx does, and reports like VelkSetOptionWithChangeList. */
VELK_API StatusCode VELK_CALL VelkSetOptionExWithChangeList(Config *config, const char *name, int32_t kind,
                                                            VelkWord value, ChangeEntry *entries,
                                                            int32_t entryCount);

/* Messages */

/**
 * Gives the message of a status code, or "Unknown error: N" or "Unknown warning: N".
 *
 * @param buffer  receives the text: room for 78 bytes, the terminator included
 */
VELK_API void VELK_CALL VelkStrError(StatusCode code, char *buffer);

/* Register tables */

/** Makes an empty table with room for `capacity` zeroed slots. @return the table, or null */
VELK_API VRegTable *VELK_CALL AllocateVRegTable(uint32_t capacity);

/**
 * Gives a table room for `extra` more zeroed slots.
 *
 * @return the table, which may have moved, with every reference to it or its slots dead; or null,
 *         with `table` as it was and still the caller's
 */
VELK_API VRegTable *VELK_CALL GrowVRegTable(VRegTable *table, uint32_t extra);

/**
 * Copies the header and the slots in use of a table over another one that has room for them; strings
 * and lists are copied, one for which there is no memory is null in the copy. What `destination`
 * held is neither looked at nor released; its `capacity` becomes the source's.
 */
VELK_API void VELK_CALL CopyVRegTable(const VRegTable *source, VRegTable *destination);

/** Releases a table with its strings and lists. Null is ignored. */
VELK_API void VELK_CALL FreeVRegTable(VRegTable *table);

/** Finds a register. @return the slot, valid until the table grows or goes, or null: no such register */
VELK_API VReg *VELK_CALL LookupVReg(VRegTable *table, uint32_t id, int32_t instance);

/* Lists and strings */

/** Makes an empty list. `capacity` zeroed words of room are there to be filled directly, none below 1;
 * the first List_Append gives them up. @return the list, which the caller owns, or null */
VELK_API List *VELK_CALL List_New(int32_t capacity);

/** Copies a list. @return the copy, which the caller owns, or null */
VELK_API List *VELK_CALL List_CopyNew(const List *list);

/** @return 1 if both lists hold the same numbers in the same order, else 0 */
VELK_API int32_t VELK_CALL List_AreEqual(const List *first, const List *second);

/** Puts a number at the end of a list. @return 0; -1 out of memory, with the list as it was */
VELK_API StatusCode VELK_CALL List_Append(List *list, uint32_t value);

/** Releases a list. Null is not allowed. */
VELK_API void VELK_CALL List_Delete(List *list);

/** Copies a text. @return the copy, which the caller owns; null for null, and when memory runs out */
VELK_API char *VELK_CALL String_CopyNew(const char *text);

/** @return 1 if both texts are equal byte for byte, else 0 */
VELK_API int32_t VELK_CALL String_AreEqual(const char *first, const char *second);

/**
 * Puts a text behind a string of this library. `more` is no part of `text`.
 *
 * @return the longer string, which takes the place of `text`; or null, with `text` as it was
 */
VELK_API char *VELK_CALL String_Append(char *text, const char *more);

/** Releases a string of this library. Null is ignored. */
VELK_API void VELK_CALL String_Delete(char *text);

#ifdef __cplusplus
}
#endif

#endif

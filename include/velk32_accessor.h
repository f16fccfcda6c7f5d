/*
 * The contract of a Velk hardware accessor: a module that alone touches the boards of a class.
 *
 * A class names its accessor with the item "Accessor" of its catalogue section. The module links
 * against the library and exports the entry points below, the last two if it wants to. Each is
 * defined with VELK_ACCESSOR_ENTRY in front of it.
 *
 * Threads. Entries run inside the client's calls, on its thread, which may be another one each time. A
 * session is opened, used once and closed in one such call. Clients let two calls enter a module at the
 * same time, of two classes and engines too, only if its documentation allows it; a module that allows
 * it guards the state that it keeps. CfgClass_GetAccessorData may be called at any time, on any thread,
 * until the engine is closed.
 *
 * Register tables and their strings and lists are made with the library's exports and belong to the
 * library once handed over. Two traps: slots begin one VReg behind the start of a table's block,
 * (VReg *)table + 1, which is not table + 1 where references are 64 bits wide, so `regs` is the way
 * to them; and a filler has to set `count`, for slots at or above it are never looked at.
 *
 * A table place is the address of a VRegTable reference. A Config begins with one, a fixed part of
 * this interface: Cfg_Read stores its table with *(VRegTable **)config. For the same reason a place
 * serves VelkGetBits and VelkSetBits as their first argument: (Config *)place.
 *
 * Status codes are the shared ones of velk32.h. Where an entry's comment says so, the library hands
 * what it answers to the client, who turns it into a text with VelkStrError.
 */
#ifndef VELK32_ACCESSOR_H
#define VELK32_ACCESSOR_H

#include "velk32.h"

#if defined(_WIN32)
#define VELK_ACCESSOR_EXPORT __declspec(dllexport)
#else
#define VELK_ACCESSOR_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define VELK_ACCESSOR_ENTRY extern "C" VELK_ACCESSOR_EXPORT
extern "C" {
#else
#define VELK_ACCESSOR_ENTRY VELK_ACCESSOR_EXPORT
#endif

/** Has to exist; the library does not call it. @return a version of the module's own choice */
VELK_ACCESSOR_EXPORT int32_t VELK_CALL Cfg_GetVersion(void);

/**
 * Called once for each class that is loaded. A class load that fails later releases the module
 * without calling Cfg_CloseAccessor.
 *
 * @param configClass  serves CfgClass_GetAccessorData; not to be used after the engine is closed
 * @param directory    the engine's definition directory, valid during the call
 * @return 0 or above: ready; negative: the class load fails with this status
 */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                 const char *directory);

/** Called for each class when its engine closes. @return 0: the module is released; else it stays */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_CloseAccessor(void);

/**
 * Opens a session, for one Cfg_Read or Cfg_Write.
 *
 * @param first, second  the client's words, as they came
 * @param session        receives a word of the accessor's choice
 * @return 0; positive: a warning, which the client receives if the transfer itself gives 0; negative:
 *         no session, Cfg_CloseSession is not called
 */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second,
                                                            VelkWord *session);

/** Closes a session. @return not looked at */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_CloseSession(VelkWord session);

/**
 * Reads the board. The place of the table is the start of `config`, and null at the call.
 *
 * @return 0: the place holds the new table, complete with its internal registers; else: handed to the
 *         client, whose configuration is then not loaded. A table left in the place is released
 *         ahead of the next Cfg_Read, when a file or a copy replaces it, or with the configuration.
 */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config);

/**
 * Writes the board.
 *
 * @param table  the configuration's; not to be grown or replaced, null if a Cfg_Read left none. The
 *               library clears no modified bit afterwards.
 * @return 0; else: handed to the client
 */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table);

/**
 * Optional: reads a file of an older format. Called for every file that the library cannot read as a
 * save file, an absent or damaged one too.
 *
 * @param table  the place for the new table, null at the call
 * @return 0: the file was read, the place holds its table, and the client gets the warning 2; else: it
 *         was not, the client gets -4, and a table left in the place is released
 */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_LoadFromFile(ConfigClass *configClass, const char *file,
                                                           VRegTable **table);

/**
 * Optional: supplies the internal registers, which a load from a file leaves out, after every file
 * that was read.
 *
 * @param unused  null
 * @param table   the place of the table just read, whose `capacity` may exceed its `count`; it may be
 *                replaced through GrowVRegTable. It holds null if a Cfg_LoadFromFile left none.
 * @return negative: the load fails with this status, and the table in the place is released; else: not
 *         looked at
 */
VELK_ACCESSOR_EXPORT StatusCode VELK_CALL Cfg_SetInternalVRegs(void *unused, VRegTable **table);

#ifdef __cplusplus
}
#endif

#endif

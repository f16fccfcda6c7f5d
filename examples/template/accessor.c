/*
 * A template of an accessor, for amplifiers whose registers are in this module's memory. What stands in
 * place of a bus is the array `boards`; put the access to your hardware there.
 *
 * The class's section of the catalogue says with "Boards" how many amplifiers there are. The first word of a
 * session is the number of an amplifier, from 0; the second has to be 0.
 *
 * The module has no lock: a client keeps all calls that enter it on one thread at a time.
 */
#include "velk32_accessor.h"

#include <stdlib.h>
#include <string.h>

/* The registers, as a configuration has them. The seventh digit from the right says what one holds: 0 a
 * number, B a text, F a list. */
enum { ControlId = 0x00000001, OwnerId = 0x0B000002, ChannelsId = 0x0F000003, RegisterCount = 3 };

enum { MaxBoards = 4, ControlBits = 0xFF, OwnerRoom = 15, ChannelRoom = 8 };

typedef struct Board {
    uint32_t control;
    char owner[OwnerRoom + 1];
    uint32_t channelCount;
    uint32_t channels[ChannelRoom];
} Board;

/* The hardware. */
static Board boards[MaxBoards] = {
    {0x31, "LAB 1", 2, {0, 4}},
    {0x00, "", 0, {0}},
};

/* Boards that there are; 0 before the first class is loaded. It goes when the module is unloaded. */
static uint32_t boardCount;

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

/* 0 if the text is no number of boards. */
static uint32_t ParseBoards(const char *text)
{
    char *end;
    const unsigned long number = strtoul(text, &end, 10);

    return *end == '\0' && number <= MaxBoards ? (uint32_t)number : 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    const char *text;
    uint32_t count;

    (void)directory;
    if (CfgClass_GetAccessorData(configClass, "Boards", &text) < 0)
        return StatusNoAccessorSettings;
    count = ParseBoards(text);
    if (count == 0)
        return StatusNoAccessorSettings;
    /* A session does not tell its class, so all classes of this module have to mean the same boards. */
    if (boardCount != 0 && count != boardCount)
        return StatusAccessorInUse;
    boardCount = count;
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    if (first >= boardCount || second != 0)
        return StatusHardwareAccessFailed;
    *session = first;
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    (void)session;
    return 0;
}

static StatusCode ReadOwner(const Board *board, VReg *reg)
{
    char *owner = String_CopyNew(board->owner);

    if (owner == NULL)
        return StatusOutOfMemory;
    reg->id = OwnerId;
    reg->value = (VelkWord)owner;
    return 0;
}

static StatusCode ReadChannels(const Board *board, VReg *reg)
{
    List *channels = List_New((int32_t)board->channelCount);

    if (channels == NULL)
        return StatusOutOfMemory;
    if (board->channelCount > 0)
        memcpy(channels->items, board->channels, board->channelCount * sizeof *board->channels);
    channels->count = (int32_t)board->channelCount;
    reg->id = ChannelsId;
    reg->value = (VelkWord)channels;
    return 0;
}

/* A register counts once it is complete: after a failure, FreeVRegTable releases what there is. */
static StatusCode ReadRegisters(const Board *board, VRegTable *table)
{
    StatusCode status;

    table->regs[0].id = ControlId;
    table->regs[0].value = board->control;
    table->count = 1;
    status = ReadOwner(board, &table->regs[1]);
    if (status < 0)
        return status;
    table->count = 2;
    status = ReadChannels(board, &table->regs[2]);
    if (status < 0)
        return status;
    table->count = 3;
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    VRegTable *table = AllocateVRegTable(RegisterCount);
    StatusCode status;

    if (table == NULL)
        return StatusOutOfMemory;
    status = ReadRegisters(&boards[session], table);
    if (status < 0) {
        FreeVRegTable(table);
        return status;
    }
    *(VRegTable **)config = table;
    return 0;
}

/* Puts a table into the form of a board. A null text or list counts as an empty one. */
static StatusCode ComposeBoard(VRegTable *table, Board *board)
{
    const VReg *control = LookupVReg(table, ControlId, 1);
    const VReg *ownerReg = LookupVReg(table, OwnerId, 1);
    const VReg *channelsReg = LookupVReg(table, ChannelsId, 1);
    const char *owner;
    const List *channels;

    if (control == NULL || ownerReg == NULL || channelsReg == NULL || table->count != RegisterCount)
        return StatusBadHardwareConfig;
    owner = (const char *)ownerReg->value;
    channels = (const List *)channelsReg->value;
    if ((control->value & ~(VelkWord)ControlBits) != 0)
        return StatusBadHardwareConfig;
    if (owner != NULL && strlen(owner) > OwnerRoom)
        return StatusBadHardwareConfig;
    if (channels != NULL && channels->count > ChannelRoom)
        return StatusBadHardwareConfig;

    memset(board, 0, sizeof *board);
    board->control = (uint32_t)control->value;
    if (owner != NULL)
        memcpy(board->owner, owner, strlen(owner));
    if (channels != NULL && channels->count > 0) {
        board->channelCount = (uint32_t)channels->count;
        memcpy(board->channels, channels->items, board->channelCount * sizeof *board->channels);
    }
    return 0;
}

/* Nothing reaches the board before the whole table is known to fit it. */
VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    Board board;
    StatusCode status;

    if (table == NULL)
        return StatusBadHardwareConfig;
    status = ComposeBoard(table, &board);
    if (status < 0)
        return status;
    boards[session] = board;
    return 0;
}

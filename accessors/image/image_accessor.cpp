// Entry points of velkimage, the accessor for boards whose registers lie in a file. Its settings are
// described in docs/image-accessor.md. Any thread may call.
#include "accessors/image/image_board.h"
#include "accessors/image/image_session.h"
#include "accessors/image/image_units.h"
#include "velk32_accessor.h"

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    ImageMap *map;
    const StatusCode status = ImageMap_Read(configClass, directory, &map);
    return status < 0 ? status : ImageUnits_Add(map);
}

// Which class goes is not said: what was kept for it goes with the module.
VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t board, uint32_t unit, VelkWord *session)
{
    const ImageMap *map = ImageUnits_Find(unit);
    if (map == nullptr)
        return StatusWrongHardware;
    ImageSession *opened;
    const StatusCode status = ImageSession_Open(map, board, &opened);
    if (status == 0)
        *session = reinterpret_cast<VelkWord>(opened);
    return status;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    ImageSession_Close(reinterpret_cast<ImageSession *>(session));
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    const ImageSession *opened = reinterpret_cast<const ImageSession *>(session);
    return Board_ToTable(opened->map, opened->bytes, reinterpret_cast<VRegTable **>(config));
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    return ImageSession_Write(reinterpret_cast<ImageSession *>(session), table);
}

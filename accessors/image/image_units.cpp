#include "accessors/image/image_units.h"

#include "platform/lock.h"

struct UnitChain {
    Lock lock;
    ImageMap *first = nullptr;
};

static constinit UnitChain units;

// At the end of the process this comes behind the client's exit handlers and static destructors, which may
// still use an engine. A destructor of `units` would come ahead of them.
[[gnu::destructor]] static void Module_OnUnload()
{
    while (units.first != nullptr) {
        ImageMap *map = units.first;
        units.first = map->next;
        ImageMap_Delete(map);
    }
}

// Under the lock.
static const ImageMap *UnitChain_Find(uint32_t unit)
{
    for (const ImageMap *map = units.first; map != nullptr; map = map->next) {
        if (map->unit == unit)
            return map;
    }
    return nullptr;
}

StatusCode ImageUnits_Add(ImageMap *map)
{
    const LockGuard guard(&units.lock);
    const ImageMap *present = UnitChain_Find(map->unit);
    if (present == nullptr) {
        map->next = units.first;
        units.first = map;
        return 0;
    }
    const bool isSame = ImageMap_AreEqual(present, map);
    ImageMap_Delete(map);
    return isSame ? 0 : StatusAccessorInUse;
}

const ImageMap *ImageUnits_Find(uint32_t unit)
{
    const LockGuard guard(&units.lock);
    return UnitChain_Find(unit);
}

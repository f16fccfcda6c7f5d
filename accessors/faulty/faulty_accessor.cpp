// Entry points of velkfaulty, the accessor that wraps another one and makes calls of it go wrong. Its
// settings are described in docs/faulty-accessor.md. Any thread may call where the wrapped module allows it.
#include "accessors/faulty/fault_plan.h"
#include "platform/accessor.h"
#include "platform/lock.h"

#include <atomic>

// What all classes of this module have in common, since sessions do not tell their class: one wrapped module
// and one plan, from the first class that is initialised up to the close of the last. A class load that
// fails late is never closed; what it shares then stays until the module unloads.
struct Sharing {
    Lock lock;                 // of what comes and goes with classes
    FaultPlan *plan = nullptr; // null: there is no class
    Accessor wrapped = {};
    uint32_t classes = 0;         // initialised, and not closed
    bool isWrappedToStay = false; // it refused to close, so something may still run in it
    std::atomic<uint32_t> calls[EntryCount] = {};
};

static constinit Sharing sharing;

static void Sharing_End()
{
    if (sharing.wrapped.module != nullptr && !sharing.isWrappedToStay)
        Module_Release(sharing.wrapped.module);
    sharing.wrapped = {};
    sharing.isWrappedToStay = false;
    FaultPlan_Delete(sharing.plan);
    sharing.plan = nullptr;
    sharing.classes = 0;
    for (std::atomic<uint32_t> &count : sharing.calls)
        count = 0;
}

// At the end of the process this comes behind the client's exit handlers and static destructors, which may
// still use and close an engine. A destructor of `sharing` would come ahead of them.
[[gnu::destructor]] static void Module_OnUnload()
{
    Sharing_End();
}

// Makes a call of the wrapped module, or refuses it. `place` is null where no table is handed over.
template <typename Wrapped, typename... Arguments>
static StatusCode Sharing_Call(Entry entry, VRegTable **place, Wrapped wrapped, Arguments... arguments)
{
    const Call call = {sharing.plan, entry, ++sharing.calls[entry]};
    const StatusCode refusal = Call_Refuse(&call);
    return refusal != 0 ? refusal : Call_Spoil(&call, wrapped(arguments...), place);
}

// What the library does without the entry: no file is taken, no register supplied.
static StatusCode VELK_CALL TakeNoFile(ConfigClass * /*configClass*/, const char * /*file*/,
                                       VRegTable ** /*table*/)
{
    return StatusBadFile;
}

static StatusCode VELK_CALL SupplyNothing(void * /*unused*/, VRegTable ** /*table*/)
{
    return 0;
}

// Takes the plan over. A module that wraps itself would call itself without end.
static StatusCode Sharing_Begin(FaultPlan *plan)
{
    Accessor *wrapped = &sharing.wrapped;
    sharing.plan = plan;
    const StatusCode status = Accessor_Load(plan->wraps, wrapped);
    if (status < 0)
        return status;
    if (wrapped->loadFromFile == nullptr)
        wrapped->loadFromFile = TakeNoFile;
    if (wrapped->setInternalVRegs == nullptr)
        wrapped->setInternalVRegs = SupplyNothing;
    return wrapped->initializeAccessor == Cfg_InitializeAccessor ? StatusNoAccessorSettings : 0;
}

// Takes the plan over.
static StatusCode Sharing_Join(FaultPlan *plan)
{
    const bool isSame = FaultPlan_AreEqual(sharing.plan, plan);
    FaultPlan_Delete(plan);
    return isSame ? 0 : StatusAccessorInUse;
}

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    FaultPlan *plan;
    StatusCode status = FaultPlan_Read(configClass, &plan);
    if (status < 0)
        return status;
    const LockGuard guard(&sharing.lock);
    status = sharing.plan == nullptr ? Sharing_Begin(plan) : Sharing_Join(plan);
    if (status == 0)
        status = Sharing_Call(EntryInitializeAccessor, nullptr, sharing.wrapped.initializeAccessor,
                              configClass, directory);
    if (status >= 0)
        ++sharing.classes;
    if (sharing.classes == 0)
        Sharing_End();
    return status;
}

static StatusCode Wrapped_Close()
{
    const StatusCode status = sharing.wrapped.closeAccessor();
    sharing.isWrappedToStay = sharing.isWrappedToStay || status != 0;
    return status;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    const LockGuard guard(&sharing.lock);
    const StatusCode status = Sharing_Call(EntryCloseAccessor, nullptr, Wrapped_Close);
    if (--sharing.classes == 0)
        Sharing_End();
    return status;
}

static StatusCode Wrapped_CreateSession(uint32_t first, uint32_t second, VelkWord *session, bool *isOpen)
{
    const StatusCode status = sharing.wrapped.createSession(first, second, session);
    *isOpen = status >= 0;
    return status;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    bool isOpen = false;
    const StatusCode status =
        Sharing_Call(EntryCreateSession, nullptr, Wrapped_CreateSession, first, second, session, &isOpen);
    if (isOpen && status < 0)
        sharing.wrapped.closeSession(*session);
    return status;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    return Sharing_Call(EntryCloseSession, nullptr, sharing.wrapped.closeSession, session);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    return Sharing_Call(EntryRead, reinterpret_cast<VRegTable **>(config), sharing.wrapped.read, session,
                        config);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    return Sharing_Call(EntryWrite, nullptr, sharing.wrapped.write, session, table);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_LoadFromFile(ConfigClass *configClass, const char *file,
                                                          VRegTable **table)
{
    return Sharing_Call(EntryLoadFromFile, table, sharing.wrapped.loadFromFile, configClass, file, table);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_SetInternalVRegs(void *unused, VRegTable **table)
{
    return Sharing_Call(EntrySetInternalVRegs, table, sharing.wrapped.setInternalVRegs, unused, table);
}

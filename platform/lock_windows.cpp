#include "platform/lock.h"

#include <windows.h>

static_assert(sizeof(SRWLOCK) == sizeof(Lock::state));

static SRWLOCK *Lock_State(Lock *lock)
{
    return reinterpret_cast<SRWLOCK *>(&lock->state);
}

void Lock_Take(Lock *lock)
{
    AcquireSRWLockExclusive(Lock_State(lock));
}

void Lock_Give(Lock *lock)
{
    ReleaseSRWLockExclusive(Lock_State(lock));
}

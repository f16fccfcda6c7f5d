#include "platform/lock.h"

void Lock_Take(Lock *lock)
{
    pthread_mutex_lock(&lock->state);
}

void Lock_Give(Lock *lock)
{
    pthread_mutex_unlock(&lock->state);
}

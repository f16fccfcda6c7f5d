// A lock for what the classes of a module share. It is there ahead of all code, and stays behind all of it.
//
// The standard library's lock brings the platform's threads into a module on Windows, which take a place of
// the process at each load and do not give it back.
#ifndef VELK_PLATFORM_LOCK_H
#define VELK_PLATFORM_LOCK_H

#if !defined(_WIN32)
#include <pthread.h>
#endif

struct Lock {
#if defined(_WIN32)
    void *state = nullptr;
#else
    pthread_mutex_t state = PTHREAD_MUTEX_INITIALIZER;
#endif
};

void Lock_Take(Lock *lock);
void Lock_Give(Lock *lock);

// Holds a lock while it stands.
struct LockGuard {
    Lock *const lock;

    explicit LockGuard(Lock *held) : lock(held)
    {
        Lock_Take(lock);
    }
    ~LockGuard()
    {
        Lock_Give(lock);
    }
    LockGuard(const LockGuard &) = delete;
    LockGuard &operator=(const LockGuard &) = delete;
};

#endif

// The named lock of a device: a POSIX semaphore that serialises pair commands between processes.
#pragma once

#include <semaphore.h>

struct _QRXLock;
using QRXLock = _QRXLock;
using PQRXLock = _QRXLock*;

struct _QRXLock {
    sem_t* m_handle;  // the named semaphore, or null: every operation then does nothing
    char lockName[128];
    void (*init)(PQRXLock lock, const char* name);  // joins the semaphore, or creates it with count 1
    void (*lock)(PQRXLock lock);                    // waits at most 5 seconds, then goes on without
    void (*unlock)(PQRXLock lock);                  // gives back what lock took; nothing after a time-out
    void (*close)(PQRXLock lock);                   // frees the lock; the semaphore stays in the system
    bool m_held;                                    // lock took a count that unlock has not given back yet
};

// Null when memory is short. Owned by the caller until `close`.
PQRXLock CreateQRXLockInstance();

// Locks between the threads of a process:
//
//     CSingleLock lock(&s_guard, TRUE);    // released at the end of the block
#pragma once

#include <mutex>

#include "framework/Object.h"

// May be locked again by the thread that holds it; each Lock needs its Unlock.
class CCriticalSection : public CObject {
public:
    BOOL Lock() {
        m_mutex.lock();
        return TRUE;
    }
    BOOL Unlock() {
        m_mutex.unlock();
        return TRUE;
    }

private:
    std::recursive_mutex m_mutex;
};

// Holds a critical section until the end of a block, or does nothing if `initialLock` is FALSE.
class CSingleLock {
public:
    // `section` must outlive this object.
    explicit CSingleLock(CCriticalSection* section, BOOL initialLock = FALSE)
        : m_section(initialLock ? section : nullptr) {
        if (m_section != nullptr) m_section->Lock();
    }
    ~CSingleLock() {
        if (m_section != nullptr) m_section->Unlock();
    }
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;

private:
    CCriticalSection* m_section;
};

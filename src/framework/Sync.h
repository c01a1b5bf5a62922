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

// Holds a critical section for a block; one object belongs to one thread.
class CSingleLock {
public:
    // `section` must outlive this object.
    explicit CSingleLock(CCriticalSection* section, BOOL initialLock = FALSE) : m_section(section) {
        if (initialLock) Lock();
    }
    ~CSingleLock() { Unlock(); }
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;

    BOOL Lock() {
        if (!m_isLocked) m_isLocked = m_section->Lock();
        return m_isLocked;
    }
    // FALSE if this object does not hold the section.
    BOOL Unlock() {
        if (!m_isLocked) return FALSE;
        m_isLocked = FALSE;
        return m_section->Unlock();
    }
    BOOL IsLocked() const { return m_isLocked; }

private:
    CCriticalSection* m_section;
    BOOL m_isLocked = FALSE;
};

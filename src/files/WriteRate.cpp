#include "files/WriteRate.h"

#include <afxmt.h>

#include <algorithm>
#include <atomic>
#include <utility>

namespace {

constexpr DWORD kWindowMs = 1000;

CCriticalSection s_guard;
// Also read without the lock, by every write.
std::atomic<DWORD> s_bytesPerSecond = 0;
DWORD s_bytesUsed = 0;
LONGLONG s_windowStart = 0;
LONGLONG s_counterFrequency = 0;
bool s_isStarted = false;

LONGLONG Now() {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

void StartWindow(LONGLONG now) {
    s_windowStart = now;
    s_bytesUsed = 0;
}

void StartCounters() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    s_counterFrequency = frequency.QuadPart;
    StartWindow(Now());
    s_isStarted = true;
}

LONGLONG ElapsedMs(LONGLONG now) {
    return static_cast<LONGLONG>(static_cast<double>(now - s_windowStart) * kWindowMs /
                                 static_cast<double>(s_counterFrequency));
}

// Afterwards the window has something left.
void EnterWindow() {
    const LONGLONG now = Now();
    const LONGLONG elapsed = ElapsedMs(now);
    if (elapsed >= kWindowMs) StartWindow(now);
    // Above the rate when that was lowered within the window.
    if (s_bytesUsed >= s_bytesPerSecond) {
        Sleep(kWindowMs - static_cast<DWORD>(elapsed));
        StartWindow(Now());
    }
}

}  // namespace

void SetWriteRate(DWORD kilobytesPerSecond) {
    const CSingleLock lock(&s_guard, TRUE);
    s_bytesPerSecond = kilobytesPerSecond << 10;
}

bool IsWriteRateLimited() {
    return s_bytesPerSecond != 0;
}

bool AcquireWriteQuota(DWORD& remaining, DWORD& grant) {
    const CSingleLock lock(&s_guard, TRUE);
    if (!s_isStarted) StartCounters();
    grant = 0;
    if (remaining == 0) return false;
    // The limit may have gone since the caller saw it.
    const DWORD rate = s_bytesPerSecond;
    if (rate == 0) {
        grant = std::exchange(remaining, 0);
        return true;
    }
    EnterWindow();
    grant = std::min(remaining, rate - s_bytesUsed);
    remaining -= grant;
    s_bytesUsed += grant;
    return true;
}

// A limit on what all files of the process write together, in windows of one second. Whoever has used up the window
// sleeps with the lock held, so that all writers wait together.
#pragma once

#include <windows.h>

// 0 takes the limit away. The rate is kept in bytes as 32 bits, so 4,194,304 kilobytes are 0 again.
void SetWriteRate(DWORD kilobytesPerSecond);

bool IsWriteRateLimited();

// Waits until something may be written, takes it from `remaining` and tells it in `grant`; both are bytes. With no
// limit everything is granted. False, with a grant of 0, when nothing remains.
bool AcquireWriteQuota(DWORD& remaining, DWORD& grant);

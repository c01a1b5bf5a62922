// The file system redirection that sends a 32-bit process on a 64-bit system to other system files. Each thread pairs
// its own two calls.
#pragma once

// True when the redirection is now off, or when there is none: on a preinstallation boot and where IsOffline64BitOs is
// false.
bool DisableFsRedirection();

// True only when the redirection was put back; false when there is none, unlike DisableFsRedirection.
bool RevertFsRedirection();

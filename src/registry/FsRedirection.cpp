#include "registry/FsRedirection.h"

#include <windows.h>

#include "registry/OfflineEnvironment.h"

namespace {

thread_local PVOID t_oldValue = nullptr;

// The boot image first: asked before the hives are mounted, the bitness would be false for the life of the process.
bool HasRedirection() {
    return !IsWinPE() && IsOffline64BitOs();
}

}  // namespace

bool DisableFsRedirection() {
    return !HasRedirection() || Wow64DisableWow64FsRedirection(&t_oldValue);
}

// The idle answer differs from that of DisableFsRedirection on purpose: here it says that nothing was put back.
bool RevertFsRedirection() {
    return HasRedirection() && Wow64RevertWow64FsRedirection(t_oldValue);
}

#include "registry/WinPeHelper.h"

#include "registry/OfflineEnvironment.h"

DWORD WinPeHelper::LoadLocalMachineProfile() {
    return IsOfflineSoftwareMounted() ? ERROR_SUCCESS : ERROR_CALL_NOT_IMPLEMENTED;
}

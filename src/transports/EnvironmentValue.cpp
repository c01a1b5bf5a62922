#include "transports/EnvironmentValue.h"

#include <cstdlib>

#include "transports/NamedPipeClient.h"

bool GetEnvironmentValue(const CString& name, CString& value) {
    if (NamedPipeClient::IsPipeChannelEnabled()) {
        value = NamedPipeClient::GetEnvVariable(name);
        return true;
    }
    // This toolchain's run-time library lacks _wdupenv_s, whose failures are those of its copy.
    value = _wgetenv(name);
    return true;
}

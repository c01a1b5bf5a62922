#include "transports/UserNames.h"

#define SECURITY_WIN32
#include <security.h>

#include "transports/NamedPipeClient.h"

namespace {

constexpr int kMostCharacters = 256;

template <class Query>
CString QuerySystem(const Query& query) {
    CString name;
    ULONG size = kMostCharacters + 1;
    if (!query(name.GetBuffer(kMostCharacters + 1), &size)) return CString();
    name.ReleaseBuffer();
    return name;
}

}  // namespace

CString CurrentUserName() {
    if (NamedPipeClient::IsPipeChannelEnabled()) return NamedPipeClient::GetUserName();
    return QuerySystem([](LPWSTR buffer, DWORD* size) { return GetUserNameW(buffer, size) != FALSE; });
}

CString CurrentQualifiedUserName() {
    if (NamedPipeClient::IsPipeChannelEnabled()) return NamedPipeClient::GetUserNameEx();
    return QuerySystem(
        [](LPWSTR buffer, ULONG* size) { return GetUserNameExW(NameSamCompatible, buffer, size) != FALSE; });
}

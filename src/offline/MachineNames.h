// The names of the machine that the toolkit works for: of the installed system on a preinstallation boot.
#pragma once

#include <afx.h>

// The first label of the network domain, in upper case: "ALPHA" for "alpha.beta". A domain that begins with a dot stays
// whole. Empty when the machine has none. Throws CRegistryException when the key of the network settings does not open.
CString GetMachineDomainName();

// The host name in upper case; otherwise as GetMachineDomainName.
CString GetMachineHostName();

// The host name on a preinstallation boot, which throws as above, and the system's computer name, of 15 characters at
// most, elsewhere. False when there is no such value or the name is longer; `name` then stays as it was.
bool GetMachineName(CString& name);

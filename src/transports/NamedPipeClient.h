// Commands to a companion process in the user's session, for a process without a desktop of its own. Each is one
// connection to the pipe "\\.\pipe\bvtnamedpipe": open, write, read, close.
//
//     NamedPipeClient::pipeChannelEnabled = true;    // once, by the host that has started the companion
//     const CString profile = NamedPipeClient::GetEnvVariable(L"USERPROFILE");
//
// Nothing here throws. Failures are logged and give what an empty reply gives. There is no time-out: a companion that
// takes a command and does not answer holds the calling thread until it answers or goes. The companion learns who
// calls, but cannot act in the caller's name.
#pragma once

#include <afx.h>

#include <atomic>
#include <cstdint>

// System headers have macros of these names. Include this header behind <mmsystem.h> and <security.h>.
#undef GetUserName
#undef GetUserNameEx
#undef PlaySound

class NamedPipeClient {
public:
    // False at start, and turned on by nobody but the host. While it is off no command touches the pipe, and each
    // gives the value that is named with it.
    static std::atomic<bool> pipeChannelEnabled;
    static bool IsPipeChannelEnabled() { return pipeChannelEnabled; }

    // Numbers are read from the start of the reply as _wtoi does, so an empty reply is 0.
    static std::int32_t LaunchExplorer();                        // off: -1
    static std::int64_t ExploreWindow(const CString& argument);  // off: 0
    static std::int32_t LaunchApp(const CString& commandLine);   // off: -1

    // The value of a variable of the user's environment; off: empty.
    static CString GetEnvVariable(const CString& name);

    // The name of the user of that session, plain and as DOMAIN\name. The first reply that is not empty is kept for the
    // life of the process, and is given also while the channel is off. Until there is one, off: empty. For one thread
    // at a time.
    static CString GetUserName();
    static CString GetUserNameEx();

    // These wait for the end of the reply and ignore it; off: nothing happens.
    static void PlaySound(const CString& argument);
    static void ChangeBackground(const CString& argument);
    static void SetSysColor(std::int32_t index, const CString& value);

private:
    static void SendNamedPipeCommand(const CString& message, CString* reply);
    static const CString& CachedReply(CString& cache, LPCWSTR command);
};

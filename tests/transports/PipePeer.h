// The pipe server of tests/peers in a process of its own:
//
//     PipePeer peer(L"text=42 silent");     // one connection, then another
//     EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 42);
//     EXPECT_EQ(peer.NextLine(), "4c00...");
#pragma once

#include <windows.h>

#include <string>

class PipePeer {
public:
    // The pipe is there when this returns. Throws std::runtime_error when it does not come.
    explicit PipePeer(const std::wstring& arguments);
    // Ends the server.
    ~PipePeer();
    PipePeer(const PipePeer&) = delete;
    PipePeer& operator=(const PipePeer&) = delete;

    // What the server tells next; waits for it. Empty when the server is gone.
    std::string NextLine();
    // Lets a server that waits go on.
    void Tell();

private:
    HANDLE m_process = nullptr;
    HANDLE m_input = nullptr;
    HANDLE m_output = nullptr;
};

#include "transports/PipePeer.h"

#include <stdexcept>

namespace {

std::wstring ServerProgram() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.rfind(L'\\') + 1) + L"pipe_server.exe";
}

}  // namespace

PipePeer::PipePeer(const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    CreatePipe(&startup.hStdInput, &m_input, &inheritable, 0);
    CreatePipe(&m_output, &startup.hStdOutput, &inheritable, 0);
    // The server must not hold our own ends, or neither side would see the other go.
    SetHandleInformation(m_input, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(m_output, HANDLE_FLAG_INHERIT, 0);
    std::wstring commandLine = L"\"" + ServerProgram() + L"\" " + arguments;
    PROCESS_INFORMATION process{};
    const BOOL started =
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(startup.hStdInput);
    CloseHandle(startup.hStdOutput);
    if (!started) throw std::runtime_error("the pipe server does not start");
    CloseHandle(process.hThread);
    m_process = process.hProcess;
    if (NextLine() != "ready") throw std::runtime_error("the pipe server has no pipe");
}

PipePeer::~PipePeer() {
    CloseHandle(m_input);
    CloseHandle(m_output);
    TerminateProcess(m_process, 1);
    WaitForSingleObject(m_process, INFINITE);
    CloseHandle(m_process);
}

std::string PipePeer::NextLine() {
    std::string line;
    char character = 0;
    DWORD read = 0;
    while (ReadFile(m_output, &character, 1, &read, nullptr) && read == 1 && character != '\n') {
        if (character != '\r') line += character;
    }
    return line;
}

void PipePeer::Tell() {
    DWORD written = 0;
    WriteFile(m_input, "\n", 1, &written, nullptr);
}

#include "peers/Machines.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "peers/StartProgram.h"

namespace {

std::wstring Variable(const wchar_t* name) {
    std::wstring text(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

// As a whole or not at all, since the other machine looks for it.
void WritePort(const std::wstring& file, std::uint16_t port) {
    const std::wstring draft = file + L".new";
    if (FILE* const stream = _wfopen(draft.c_str(), L"w")) {
        std::fprintf(stream, "%u\n", port);
        std::fclose(stream);
    }
    MoveFileExW(draft.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING);
}

void StartEnds(const std::wstring& portFile) {
    std::wstring program(MAX_PATH, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    program.replace(program.rfind(L'\\') + 1, std::wstring::npos, L"usb_end.exe");
    const HANDLE process = StartProgram(program, L"\"" + portFile + L"\" A");
    if (process == nullptr) throw std::runtime_error("usb_end.exe does not start");
    CloseHandle(process);
}

}  // namespace

std::string End::Line(const Words& words) {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : "\t") + word;
    return line;
}

LinkMachines::LinkMachines() : m_portFile(Variable(L"USB_LINK_PORT_FILE")) {
    if (m_portFile.empty()) throw std::runtime_error("started without the other machine: use scripts/two-machines");
    WritePort(m_portFile, m_listener.Port());
}

End LinkMachines::Take(const std::string& name) {
    if (name == "A" && !std::exchange(m_isStarted, true)) StartEnds(m_portFile);
    auto& work = m_waiting[name + " work"];
    auto& watch = m_waiting[name + " watch"];
    while (work.empty() || watch.empty()) {
        LinkSocket end = m_listener.Accept(kEndMilliseconds);
        const auto greeting = end.ReceiveLine(kEndMilliseconds);
        if (!greeting) throw std::runtime_error("no end of machine " + name + " comes");
        m_waiting[*greeting].push_back(std::move(end));
    }
    End end(std::move(work.front()), std::move(watch.front()));
    work.pop_front();
    watch.pop_front();
    return end;
}

LinkMachines& Machines() {
    static auto* const machines = new LinkMachines;
    return *machines;
}

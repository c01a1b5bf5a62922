// One machine of a USB link, told what to do over a connection:
//     usb_end PORT-FILE NAME
// The file appears when somebody listens, and holds the port. Whoever listens there gets two connections, greeted by
// "NAME work" and "NAME watch"; each takes lines of words with tabs between them and answers each with a line. What may
// take long is asked at "work", what must be known meanwhile at "watch". When a connection ends, so does the process,
// whatever it is doing, and a new one takes its place, until there is nobody to connect to.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <thread>

#include "files/Utf8TextFile.h"
#include "helpers/Encodings.h"
#include "peers/BareLink.h"
#include "peers/EndWitness.h"
#include "peers/EndWords.h"
#include "peers/LinkSocket.h"
#include "support/Narrow.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr UINT kAgain = 77;  // exit code: another process is wanted

CString Wide(const std::string& utf8) {
    return Utf8ToWide(utf8.c_str()).get();
}

std::string Number(UINT64 number) {
    return std::to_string(number);
}

HANDLE HandleOf(const std::string& number) {
    return reinterpret_cast<HANDLE>(std::stoull(number));
}

DWORD Small(const std::string& number) {
    return static_cast<DWORD>(std::stoul(number));
}

class End {
public:
    explicit End(EndWitness& witness) : m_witness(witness) { m_session.SetOwnerWindow(witness.Window()); }

    std::string Work(const Words& words) {
        static const std::map<std::string, std::string (End::*)(const Words&)> kVerbs = {
            {"device", &End::Device},   {"base", &End::Base},     {"alternate", &End::Alternate},
            {"connect", &End::Connect}, {"exists", &End::Exists}, {"space", &End::Space},
            {"open", &End::Open},       {"write", &End::Write},   {"read", &End::Read},
            {"seek", &End::Seek},       {"close", &End::Close},   {"finish", &End::Finish},
            {"end", &End::EndSession},  {"bare", &End::Bare},     {"text", &End::Text},
            {"quiet", &End::Quiet}};
        const auto verb = kVerbs.find(words[0]);
        return verb != kVerbs.end() ? (this->*verb->second)(words) : "no such verb";
    }
    std::string Watch(const Words& words) {
        if (words[0] == "log") return m_witness.Log();
        if (words[0] == "events") return m_witness.Events();
        if (words[0] == "await") return m_witness.Await(words[1]) ? "yes" : "no: " + m_witness.Log();
        if (words[0] == "status") {
            DWORD status = 99;
            const bool finished = m_session.GetFinishStatus(status);
            return Number(finished) + " " + Number(status);
        }
        return "no such verb";
    }

private:
    // The text of the device file, and the file's text afterwards.
    std::string Device(const Words& words) {
        WCHAR folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_device.Format(L"%susb-device-%u", folder, GetCurrentProcessId());
        CFile(m_device, CFile::modeCreate | CFile::modeWrite)
            .Write(words[1].data(), static_cast<UINT>(words[1].size()));
        return "ok";
    }
    std::string Base(const Words& words) {
        m_session.SetBaseDirectory(Wide(words[1]));
        return "ok";
    }
    std::string Alternate(const Words& words) {
        m_session.SetAlternateDirectory(Wide(words[1]));
        return "ok";
    }
    // From now on without an owner window.
    std::string Quiet(const Words&) {
        m_session.SetOwnerWindow(nullptr);
        return "ok";
    }
    // With "greet" by handshake. Answers the result and the device's text, which tells where to connect to.
    std::string Connect(const Words& words) {
        const DWORD result = m_session.Connect(m_device, words[1] == "greet");
        return Number(result) + " " + TextOf(m_device);
    }
    std::string Exists(const Words& words) { return Number(m_session.DoesDirectoryExist(Wide(words[1]))); }
    std::string Space(const Words&) { return Number(m_session.DriveFreeSpace()); }
    std::string Open(const Words& words) {
        return Number(reinterpret_cast<UINT64>(m_session.OpenDataFile(Wide(words[1]))));
    }
    // write HANDLE SIZE SEED
    std::string Write(const Words& words) {
        std::vector<BYTE> data(Small(words[2]));
        FillPattern(data, Small(words[3]));
        try {
            m_session.WriteData(HandleOf(words[1]), data.data(), static_cast<DWORD>(data.size()));
        } catch (CFileException* problem) {
            const std::string answer = "cause " + Number(static_cast<UINT64>(problem->m_cause)) + " error " +
                                       std::to_string(problem->m_lOsError) + " " +
                                       Number(problem->m_strFileName.IsEmpty());
            problem->Delete();
            return answer;
        }
        return "ok";
    }
    // read HANDLE SIZE STEP: in reads of STEP bytes; answers what they count together, and the hash of the bytes that
    // each leaves at the start of the buffer.
    std::string Read(const Words& words) {
        const DWORD size = Small(words[2]);
        const DWORD step = std::max<DWORD>(Small(words[3]), 1);
        std::vector<BYTE> data(std::min(size, step));
        UINT64 total = 0;
        UINT64 hash = HashOf({});
        for (DWORD done = 0; done < size; done += step) {
            const DWORD wanted = std::min(step, size - done);
            const DWORD got = m_session.ReadData(HandleOf(words[1]), data.data(), wanted);
            hash = HashOf(std::span(data).first(std::min<size_t>(got, kUsbChunkBytes)), hash);
            total += got;
            if (got != wanted) break;
        }
        return Number(total) + " " + Number(hash);
    }
    std::string Seek(const Words& words) {
        return std::to_string(m_session.SeekData(HandleOf(words[1]), std::stoll(words[2]), Small(words[3])));
    }
    std::string Close(const Words& words) {
        m_session.CloseFile(HandleOf(words[1]));
        return "ok";
    }
    std::string Finish(const Words& words) {
        m_session.Finish(Small(words[1]));
        return "ok";
    }
    // text NAME [buffered]: a text file object over the session; answers the position behind the text, what it reads
    // from the text's start, the position behind that, and the length or why there is none.
    std::string Text(const Words& words) {
        CUtf8TextFile file;
        file.SetSession(&m_session);
        file.SetUseMemoryBuffer(words.size() > 2);
        if (!file.Open(Wide(words[1]), CFile::modeCreate | CFile::modeReadWrite)) return "not open";
        file.WriteString(L"one\r\n");
        std::string answer = Number(file.GetPosition()) + " ";
        file.Seek(kByteOrderMarkBytes, CFile::begin);
        char text[3];
        answer.append(text, file.Read(text, sizeof(text))).append(" " + Number(file.GetPosition()));
        try {
            answer += " " + Number(file.GetLength());
        } catch (CFileException* problem) {
            answer += " cause " + std::to_string(problem->m_cause);
            problem->Delete();
        }
        return answer;
    }
    std::string EndSession(const Words&) {
        m_session.CloseSession();
        return "ok";
    }

    // Serves a bare link beside the session, on a file of its own. Answers the device's text.
    std::string Bare(const Words& words) {
        const CString session = m_device;
        Device({"", "listen"});
        const CString device = m_device + L"-bare";
        MoveFileExW(m_device, device, MOVEFILE_REPLACE_EXISTING);
        m_device = session;
        auto* const link = new BareLink(device.GetString());
        const HANDLE file = CreateFileW(Wide(words[1]), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                        CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        std::thread([=] { link->Serve(file); }).detach();
        return TextOf(device);
    }
    static std::string TextOf(const CString& file) {
        char text[64] = {};
        CFile(file, CFile::modeRead | CFile::shareDenyNone).Read(text, sizeof(text) - 1);
        return text;
    }

    EndWitness& m_witness;
    CString m_device;
    WinUsbSession m_session;
};

void Obey(const LinkSocket& connection, const std::function<std::string(const Words&)>& act) {
    while (const auto line = connection.ReceiveLine()) connection.SendLine(act(SplitWords(*line)));
    TerminateProcess(GetCurrentProcess(), kAgain);
}

std::uint16_t PortIn(const wchar_t* file) {
    for (;; Sleep(20)) {
        unsigned port = 0;
        if (FILE* const stream = _wfopen(file, L"r")) {
            std::fscanf(stream, "%u", &port);
            std::fclose(stream);
        }
        if (port != 0) return static_cast<std::uint16_t>(port);
    }
}

int BeOnce(const wchar_t* portFile, const std::string& name) {
    const std::uint16_t port = PortIn(portFile);
    const LinkSocket work = LinkSocket::Connect(port);
    const LinkSocket watch = LinkSocket::Connect(port);
    if (!work.SendLine(name + " work") || !watch.SendLine(name + " watch")) return 0;
    EndWitness witness;
    End end(witness);
    std::thread([&] { Obey(work, [&](const Words& words) { return end.Work(words); }); }).detach();
    std::thread([&] { Obey(watch, [&](const Words& words) { return end.Watch(words); }); }).detach();
    EndWitness::HandleMessages();
    return 0;
}

// The exit code of a process of this program that is one end.
DWORD RunOnce(const std::wstring& program, const wchar_t* portFile, const wchar_t* name) {
    std::wstring command = L"\"" + program + L"\" \"" + portFile + L"\" " + name + L" once";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return 1;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return exitCode;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) return 2;
    if (argc > 3) return BeOnce(argv[1], Narrow(argv[2]));
    DWORD exitCode = kAgain;
    while (exitCode == kAgain) exitCode = RunOnce(argv[0], argv[1], argv[2]);
    return static_cast<int>(exitCode);
}

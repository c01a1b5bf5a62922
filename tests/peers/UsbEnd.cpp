// One machine of a USB link, told what to do over a connection:
//     usb_end PORT-FILE NAME
// The file appears when somebody listens, and holds the port. Whoever listens there gets two connections, greeted by
// "NAME work" and "NAME watch"; each takes lines of words with tabs between them and answers each with a line. What may
// take long is asked at "work", what must be known meanwhile at "watch". When a connection ends, so does the process,
// whatever it is doing, and a new one takes its place, until there is nobody to connect to.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <thread>

#include "files/Utf8TextFile.h"
#include "helpers/Encodings.h"
#include "peers/BareLink.h"
#include "peers/EndWitness.h"
#include "peers/EndWords.h"
#include "peers/LinkSocket.h"
#include "peers/StartProgram.h"
#include "support/Narrow.h"
#include "support/WriteCoverage.h"
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
        const std::string& verb = words[0];
        if (verb == "device") return Device(words[1]);
        if (verb == "connect") return Connect(words[1] == "greet");
        if (verb == "exists") return Number(m_session.DoesDirectoryExist(Wide(words[1])));
        if (verb == "space") return Number(m_session.DriveFreeSpace());
        if (verb == "open") return Number(reinterpret_cast<UINT64>(m_session.OpenDataFile(Wide(words[1]))));
        if (verb == "write") return Write(HandleOf(words[1]), Small(words[2]), Small(words[3]));
        if (verb == "read") return Read(HandleOf(words[1]), Small(words[2]), Small(words[3]));
        if (verb == "seek") {
            return std::to_string(m_session.SeekData(HandleOf(words[1]), std::stoll(words[2]), Small(words[3])));
        }
        if (verb == "text") return Text(words[1], words.size() > 2);
        if (verb == "bare") return Bare(words[1]);
        return WorkSilently(words) ? "ok" : "no such verb";
    }
    std::string Watch(const Words& words) {
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
    // What has no answer of its own.
    bool WorkSilently(const Words& words) {
        const std::string& verb = words[0];
        if (verb == "base") {
            m_session.SetBaseDirectory(Wide(words[1]));
        } else if (verb == "alternate") {
            m_session.SetAlternateDirectory(Wide(words[1]));
        } else if (verb == "quiet") {  // from now on without an owner window
            m_session.SetOwnerWindow(nullptr);
        } else if (verb == "close") {
            m_session.CloseFile(HandleOf(words[1]));
        } else if (verb == "finish") {
            m_session.Finish(Small(words[1]));
        } else if (verb == "end") {
            m_session.CloseSession();
        } else {
            return false;
        }
        return true;
    }
    // Makes the device file with that text.
    std::string Device(const std::string& text) {
        WCHAR folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_device.Format(L"%susb-device-%u", folder, GetCurrentProcessId());
        CFile(m_device, CFile::modeCreate | CFile::modeWrite).Write(text.data(), static_cast<UINT>(text.size()));
        return "ok";
    }
    // Answers the result and the device's text, which tells where to connect to.
    std::string Connect(bool greets) {
        const DWORD result = m_session.Connect(m_device, greets);
        return Number(result) + " " + TextOf(m_device);
    }
    std::string Write(HANDLE file, DWORD size, DWORD seed) {
        std::vector<BYTE> data(size);
        FillPattern(data, seed);
        try {
            m_session.WriteData(file, data.data(), size);
        } catch (CFileException* problem) {
            const std::string answer = "cause " + Number(static_cast<UINT64>(problem->m_cause)) + " error " +
                                       std::to_string(problem->m_lOsError) + " " +
                                       Number(problem->m_strFileName.IsEmpty());
            problem->Delete();
            return answer;
        }
        return "ok";
    }
    // In reads of `step` bytes; answers what they count together, and the hash of the bytes that each leaves at the
    // start of the buffer.
    std::string Read(HANDLE file, DWORD size, DWORD step) {
        step = std::max<DWORD>(step, 1);
        std::vector<BYTE> data(std::min(size, step));
        UINT64 total = 0;
        UINT64 hash = HashOf({});
        for (DWORD done = 0; done < size; done += step) {
            const DWORD wanted = std::min(step, size - done);
            const DWORD got = m_session.ReadData(file, data.data(), wanted);
            hash = HashOf(std::span(data).first(std::min<size_t>(got, kUsbChunkBytes)), hash);
            total += got;
            if (got != wanted) break;
        }
        return Number(total) + " " + Number(hash);
    }
    // A text file object over the session; answers the position behind the text, what it reads from the text's start,
    // the position behind that, and the length or why there is none.
    std::string Text(const std::string& name, bool isBuffered) {
        CUtf8TextFile file;
        file.SetSession(&m_session);
        file.SetUseMemoryBuffer(isBuffered);
        if (!file.Open(Wide(name), CFile::modeCreate | CFile::modeReadWrite)) return "not open";
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
    // Serves a bare link beside the session, on a file of its own. Answers the device's text.
    std::string Bare(const std::string& name) {
        const CString session = m_device;
        Device("listen");
        const CString device = m_device + L"-bare";
        MoveFileExW(m_device, device, MOVEFILE_REPLACE_EXISTING);
        m_device = session;
        auto* const link = new BareLink(device.GetString());
        const HANDLE file = CreateFileW(Wide(name), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
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
    WriteCoverage();
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
    const HANDLE process = StartProgram(program, std::wstring(L"\"") + portFile + L"\" " + name + L" once");
    if (process == nullptr) return 1;
    WaitForSingleObject(process, INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process, &exitCode);
    CloseHandle(process);
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

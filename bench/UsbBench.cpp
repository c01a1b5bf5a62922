// Writing, reading and a small request over the USB link, by a session and by a bare loop of the same transfers over
// the same stand-in. The other end is a process on another machine that serves both:
//     usb_bench [MEGABYTES]          256 without
// Both ends' sessions are there while the bare loop runs, so both ways share the processors with the send threads,
// which look for work all the time. What that costs is shown by the last lines: the bare loop beside the sessions,
// against the bare loop before there were any.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "peers/BareLink.h"
#include "peers/OtherMachine.h"
#include "support/Ratios.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr int kSmallRequests = 200;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::printf("%s\n", what);
    std::exit(1);
}

std::wstring DeviceFile(const wchar_t* name, const std::string& text) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetTempPathW(MAX_PATH, path.data()));
    path += name;
    CFile(path.c_str(), CFile::modeCreate | CFile::modeWrite).Write(text.data(), static_cast<UINT>(text.size()));
    return path;
}

// What `connect` and `bare` answer ends in "port N".
std::string PortOf(const std::string& answer) {
    Require(answer.find("port ") != std::string::npos, answer.c_str());
    return answer.substr(answer.find("port "));
}

class BareSide {
public:
    BareSide(const std::wstring& device, DWORD chunks)
        : m_link(device), m_chunks(chunks), m_data(chunks * size_t{kUsbChunkBytes}) {}

    void Write() {
        m_link.Seek(0, 0);
        for (size_t i = 0; i < m_chunks; ++i) m_link.Write(&m_data[i * kUsbChunkBytes], 0, kUsbChunkBytes);
    }
    void Read() {
        m_link.Seek(0, 0);
        for (DWORD i = 0; i < m_chunks; ++i) m_link.Read(m_data.data(), 0, kUsbChunkBytes);
    }
    void Ask() {
        for (int i = 0; i < kSmallRequests; ++i) Require(m_link.Seek(0, i) == i, "the bare seek failed");
    }

private:
    BareLink m_link;
    DWORD m_chunks;
    std::vector<BYTE> m_data;
};

class SessionSide {
public:
    SessionSide(const std::wstring& device, DWORD chunks) : m_chunks(chunks), m_data(chunks * size_t{kUsbChunkBytes}) {
        Require(m_session.Connect(device.c_str(), true) == 0, "the session does not connect");
        m_file = m_session.OpenDataFile(L"session.bin");
        Require(m_file != INVALID_HANDLE_VALUE, "the session opens no file");
    }

    void Write() {
        m_session.SeekData(m_file, 0, FILE_BEGIN);
        m_session.WriteData(m_file, m_data.data(), static_cast<DWORD>(m_data.size()));
    }
    void Read() {
        m_session.SeekData(m_file, 0, FILE_BEGIN);
        for (DWORD i = 0; i < m_chunks; ++i) {
            Require(m_session.ReadData(m_file, m_data.data(), kUsbChunkBytes) == kUsbChunkBytes, "a read is short");
        }
    }
    void Ask() {
        for (int i = 0; i < kSmallRequests; ++i) {
            Require(m_session.SeekData(m_file, i, FILE_BEGIN) == i, "the session's seek failed");
        }
    }
    void End() {
        m_session.CloseFile(m_file);
        m_session.Finish(0);
        m_session.CloseSession();
    }

private:
    DWORD m_chunks;
    std::vector<BYTE> m_data;
    WinUsbSession m_session;
    HANDLE m_file = INVALID_HANDLE_VALUE;
};

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const DWORD chunks = argc > 1 ? static_cast<DWORD>(_wtoi(argv[1])) : 256;
    const char* const folder = std::getenv("USB_LINK_FOLDER");
    Require(folder != nullptr, "started without the other machine: use scripts/two-machines");
    const OtherMachine other;
    BareSide bare(DeviceFile(L"usb-bench-bare", PortOf(other.Do({"bare", std::string(folder) + "\\bare.bin"}))),
                  chunks);
    bare.Write();
    const auto secondsAlone = [](auto work) {
        double least = SecondsOf(work);
        for (int i = 0; i < 4; ++i) least = std::min(least, SecondsOf(work));
        return least;
    };
    const double askAlone = secondsAlone([&] { bare.Ask(); });
    const double writeAlone = secondsAlone([&] { bare.Write(); });

    other.Do({"base", folder});
    SessionSide session(DeviceFile(L"usb-bench", PortOf(other.Do({"connect", "listen"}))), chunks);
    const std::string megabytes = std::to_string(chunks) + " MB";
    Ratios ratios;
    ratios.Compare("writing " + megabytes, 1 / 0.9, Timed([&] { session.Write(); }), Timed([&] { bare.Write(); }), 5);
    ratios.Compare("reading " + megabytes, 1 / 0.9, Timed([&] { session.Read(); }), Timed([&] { bare.Read(); }), 5);
    ratios.Compare("200 small requests", 1.5, Timed([&] { session.Ask(); }), Timed([&] { bare.Ask(); }));
    const double askBeside = secondsAlone([&] { bare.Ask(); });
    const double writeBeside = secondsAlone([&] { bare.Write(); });
    session.End();
    const auto print = [](const std::string& name, double beside, double alone) {
        std::printf("%s: ratio %.2f, limit - (ours %.2f, bare %.2f)\n", name.c_str(), beside / alone, beside * 1000,
                    alone * 1000);
    };
    print("the bare loop beside the send threads, writing", writeBeside, writeAlone);
    print("the bare loop beside the send threads, small requests", askBeside, askAlone);
    ratios.Print();
    return 0;
}

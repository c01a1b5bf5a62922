// Writing, reading and a small request over the USB link, by a session and by a bare loop of the same messages over the
// same kind of cable. At the other end is this program on another machine, which serves both:
//     usb_bench [MEGABYTES]          256 without
// Both ends' sessions are there while the bare loop runs, so both ways share the processors with the send threads,
// which look for work all the time. What that costs is shown by the last lines: the bare loop beside the sessions,
// against the bare loop before there were any.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "peers/FakeWinUsb.h"
#include "peers/TwoMachines.h"
#include "support/Ratios.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr int kSmallRequests = 200;
// Single runs differ by a fifth.
constexpr int kRuns = 15;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::printf("%s\n", what);
    std::exit(1);
}

std::string InFolder(const char* name) {
    return std::string(std::getenv("USB_LINK_FOLDER")) + "\\" + name;
}

// The transfers of a link without a session, by one thread that waits for nothing else.
class BareLink {
public:
    explicit BareLink(LinkSocket cable) : m_cable(std::move(cable)) {}

    // A message is one transfer, so the caller's data are put behind the message's fields first.
    void Write(const void* data, DWORD bytes) {
        const auto head = EncodeUsbMessage({.command = UsbCmdWriteFile, .count = bytes});
        m_message.resize(head.size() + bytes);
        std::copy(head.begin(), head.end(), m_message.begin());
        std::memcpy(m_message.data() + head.size(), data, bytes);
        Send(m_message);
        Require(Field<DWORD>() == UsbCmdWriteFileReply && Field<DWORD>() == bytes, "the bare write failed");
    }
    void Read(void* data, DWORD bytes) {
        Send(EncodeUsbMessage({.command = UsbCmdReadFile, .count = bytes}));
        Require(Field<DWORD>() == UsbCmdReadFileReply && Field<DWORD>() == bytes, "the bare read failed");
        Receive(data, bytes);
    }
    void Seek(INT64 position) {
        Send(EncodeUsbMessage({.command = UsbCmdSeekFile, .position = position, .method = FILE_BEGIN}));
        Require(Field<DWORD>() == UsbCmdSeekFileReply && Field<INT64>() == position, "the bare seek failed");
    }
    // Serves those three on the file, whatever the handle.
    [[noreturn]] void Serve(HANDLE file) {
        std::vector<BYTE> buffer(2 * kUsbChunkBytes);
        for (;;) {
            const auto command = Field<DWORD>();
            Field<UINT64>();
            DWORD count = 0;
            if (command == UsbCmdSeekFile) {
                LARGE_INTEGER position{};
                position.QuadPart = Field<INT64>();
                SetFilePointerEx(file, position, &position, Field<DWORD>());
                Send(EncodeUsbMessage({.command = UsbCmdSeekFileReply, .position = position.QuadPart}));
            } else if (command == UsbCmdWriteFile) {
                const auto bytes = Field<DWORD>();
                Receive(buffer.data(), bytes);
                WriteFile(file, buffer.data(), bytes, &count, nullptr);
                Send(EncodeUsbMessage({.command = UsbCmdWriteFileReply, .count = count}));
            } else {
                const auto bytes = Field<DWORD>();
                const auto headBytes = EncodeUsbMessage({.command = UsbCmdReadFileReply}).size();
                ReadFile(file, buffer.data() + headBytes, bytes, &count, nullptr);
                const auto head = EncodeUsbMessage({.command = UsbCmdReadFileReply, .count = count});
                std::copy(head.begin(), head.end(), buffer.begin());
                Send(std::span(buffer).first(headBytes + count));
            }
        }
    }

private:
    void Send(std::span<const BYTE> bytes) const {
        Require(m_cable.SendAll(bytes.data(), bytes.size()), "the bare link is cut");
    }
    // When the other end is gone, so is what there was to measure.
    void Receive(void* buffer, size_t bytes) const {
        for (auto* next = static_cast<BYTE*>(buffer); bytes != 0;) {
            const size_t got = m_cable.Receive(next, bytes);
            if (got == 0) TerminateProcess(GetCurrentProcess(), 0);
            next += got;
            bytes -= got;
        }
    }
    template <class T>
    T Field() const {
        T value{};
        Receive(&value, sizeof(value));
        return value;
    }

    LinkSocket m_cable;
    std::vector<BYTE> m_message;
};

class BareSide {
public:
    BareSide(LinkSocket cable, DWORD chunks)
        : m_link(std::move(cable)), m_chunks(chunks), m_data(chunks * size_t{kUsbChunkBytes}) {}

    void Write() {
        m_link.Seek(0);
        for (size_t i = 0; i < m_chunks; ++i) m_link.Write(&m_data[i * kUsbChunkBytes], kUsbChunkBytes);
    }
    void Read() {
        m_link.Seek(0);
        for (DWORD i = 0; i < m_chunks; ++i) m_link.Read(m_data.data(), kUsbChunkBytes);
    }
    void Ask() {
        for (int i = 0; i < kSmallRequests; ++i) m_link.Seek(i);
    }

private:
    BareLink m_link;
    DWORD m_chunks;
    std::vector<BYTE> m_data;
};

class SessionSide {
public:
    SessionSide(const CString& device, DWORD chunks) : m_chunks(chunks), m_data(chunks * size_t{kUsbChunkBytes}) {
        Require(m_session.Connect(device, true) == 0, "the session does not connect");
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

// The other end: the bare loop at once, and the session when the first byte comes for it. Ends with the first machine.
void ServeBoth() {
    BareLink bare(LinkSocket::Connect(PortOfTheFirst()));
    LinkSocket cable = LinkSocket::Connect(PortOfTheFirst());
    const HANDLE file = CreateFileA(InFolder("bare.bin").c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                    nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    std::thread([&] { bare.Serve(file); }).detach();
    char go = 0;
    cable.Receive(&go, 1);
    FakeWinUsb usb(std::move(cable));
    WinUsbSession session;
    session.SetBaseDirectory(_wgetenv(L"USB_LINK_FOLDER"));
    session.Connect(usb.Device(), false);
    Sleep(INFINITE);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc > 1 && std::wstring_view(argv[1]) == L"other") ServeBoth();
    const DWORD chunks = argc > 1 ? static_cast<DWORD>(_wtoi(argv[1])) : 256;
    const LinkSocket listener = ListenForTheOther();
    BareSide bare(listener.Accept(kOtherComesMilliseconds), chunks);
    LinkSocket cable = listener.Accept(kOtherComesMilliseconds);
    bare.Write();
    const auto secondsAlone = [](auto work) {
        double least = SecondsOf(work);
        for (int i = 0; i < 4; ++i) least = std::min(least, SecondsOf(work));
        return least;
    };
    const double askAlone = secondsAlone([&] { bare.Ask(); });
    const double writeAlone = secondsAlone([&] { bare.Write(); });

    Require(cable.SendAll("", 1), "the other machine does not come");
    FakeWinUsb usb(std::move(cable));
    SessionSide session(usb.Device(), chunks);
    const std::string megabytes = std::to_string(chunks) + " MB";
    Ratios ratios;
    ratios.Compare("writing " + megabytes, 1 / 0.9, Timed([&] { session.Write(); }), Timed([&] { bare.Write(); }),
                   kRuns);
    ratios.Compare("reading " + megabytes, 1 / 0.9, Timed([&] { session.Read(); }), Timed([&] { bare.Read(); }), kRuns);
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

// One machine of a USB link, told what to do over a connection:
//     usb_end PORT-FILE
// The file appears when somebody listens, and holds the port. Lines of words with tabs between them come from there,
// and each is answered with a line. Ends with the connection, whatever the session is doing.
#include <cstdio>
#include <thread>

#include "helpers/Encodings.h"
#include "peers/BareLink.h"
#include "peers/LinkSocket.h"
#include "peers/OtherMachine.h"
#include "support/Narrow.h"
#include "support/WriteCoverage.h"
#include "transports/WinUsbSession.h"

namespace {

CString Wide(const std::string& utf8) {
    return Utf8ToWide(utf8.c_str()).get();
}

// A device file with that text; what stands in it once it is open is the way for the other end.
CString DeviceFile(const wchar_t* name, const std::string& text) {
    WCHAR folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const CString device = CString(folder) + name;
    CFile(device, CFile::modeCreate | CFile::modeWrite).Write(text.data(), static_cast<UINT>(text.size()));
    return device;
}
std::string TextOf(const CString& file) {
    char text[64] = {};
    CFile(file, CFile::modeRead | CFile::shareDenyNone).Read(text, sizeof(text) - 1);
    return text;
}

// Serves a bare link beside the session, on a file of its own.
std::string Bare(const std::string& name) {
    const CString device = DeviceFile(L"usb-end-bare", "listen");
    auto* const link = new BareLink(device.GetString());
    const HANDLE file = CreateFileW(Wide(name), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    std::thread([=] { link->Serve(file); }).detach();
    return TextOf(device);
}

std::string Obey(WinUsbSession& session, const std::vector<std::string>& words) {
    const std::string& verb = words[0];
    if (verb == "bare") return Bare(words[1]);
    if (verb == "base") return session.SetBaseDirectory(Wide(words[1])), "ok";
    if (verb == "exists") return std::to_string(session.DoesDirectoryExist(Wide(words[1])));
    if (verb == "connect") {  // answers the device's text
        const CString device = DeviceFile(L"usb-end", words[1]);
        return session.Connect(device, false) == 0 ? TextOf(device) : "no device";
    }
    if (verb == "put") {  // a file of so many bytes of the pattern
        const HANDLE file = session.OpenDataFile(Wide(words[1]));
        const std::string data = Pattern(std::stoul(words[2]), std::stoul(words[3]));
        session.WriteData(file, data.data(), static_cast<DWORD>(data.size()));
        return session.CloseFile(file), "ok";
    }
    if (verb == "status") {
        DWORD status = 0;
        return session.GetFinishStatus(status) ? std::to_string(status) : "none";
    }
    return "no such verb";
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

std::vector<std::string> Words(const std::string& line) {
    std::vector<std::string> words(1);
    for (const char c : line) c == '\t' ? words.emplace_back() : words.back() += c;
    return words;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 2) return 2;
    const LinkSocket connection = LinkSocket::Connect(PortIn(argv[1]));
    auto* const session = new WinUsbSession;
    while (const auto line = connection.ReceiveLine()) connection.SendLine(Obey(*session, Words(*line)));
    WriteCoverage();
    TerminateProcess(GetCurrentProcess(), 0);
}

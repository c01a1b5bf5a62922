// The other machine of a USB link: a session with its base directory in %USB_LINK_FOLDER%\b, at the end of the second
// connection to the first machine. Lines of words come by the first one, and each is answered with a line. Ends with
// that connection, whatever the session is doing.
#include <sstream>

#include "peers/FakeWinUsb.h"
#include "peers/TwoMachines.h"
#include "support/WriteCoverage.h"
#include "transports/WinUsbSession.h"

namespace {

std::string Obey(WinUsbSession& session, const std::string& line) {
    std::istringstream words(line);
    std::string verb, name;
    size_t size = 0;
    unsigned seed = 0;
    words >> verb >> name >> size >> seed;
    const CString wideName(std::wstring(name.begin(), name.end()).c_str());
    if (verb == "exists") return std::to_string(session.DoesDirectoryExist(wideName));
    if (verb == "put") {  // a file of so many bytes of the pattern
        const HANDLE file = session.OpenDataFile(wideName);
        session.WriteData(file, Pattern(size, seed).data(), static_cast<DWORD>(size));
        return session.CloseFile(file), "ok";
    }
    DWORD status = 0;
    return session.GetFinishStatus(status) ? std::to_string(status) : "none";
}

}  // namespace

int wmain() {
    const LinkSocket orders = LinkSocket::Connect(PortOfTheFirst());
    FakeWinUsb usb(LinkSocket::Connect(PortOfTheFirst()));
    auto* const session = new WinUsbSession;
    session->SetBaseDirectory(CString(_wgetenv(L"USB_LINK_FOLDER")) + L"\\b");
    session->Connect(usb.Device(), false);
    std::string line;
    for (char c = 0; orders.Receive(&c, 1) == 1;) {
        if (c != '\n') {
            line += c;
            continue;
        }
        const std::string answer = Obey(*session, std::exchange(line, {})) + "\n";
        orders.SendAll(answer.data(), answer.size());
    }
    WriteCoverage();
    TerminateProcess(GetCurrentProcess(), 0);
    return 0;
}

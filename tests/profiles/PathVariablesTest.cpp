#include "files/PathVariables.h"

#include <gtest/gtest.h>
#include <string>

#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/ScopedPreinstallation.h"
#include "transports/EnvironmentValue.h"
#include "transports/NamedPipeClient.h"
#include "transports/PipePeer.h"

namespace {

// A variable of this process's environment, in both the system's copy and the run-time library's.
class Variable {
public:
    Variable(const wchar_t* name, const wchar_t* value) : m_name(name) { _wputenv_s(name, value); }
    ~Variable() { _wputenv_s(m_name, L""); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const wchar_t* m_name;
};

int s_calls = 0;

DWORD WINAPI CountedExpansion(LPCWSTR text, LPWSTR buffer, DWORD chars) {
    ++s_calls;
    return SystemFunction(&ExpandEnvironmentStringsW, L"kernel32.dll", "ExpandEnvironmentStringsW")(text, buffer,
                                                                                                    chars);
}

}  // namespace

TEST(ExpandPath, AsksTheEnvironmentOnceAndKeepsWhatIsNotSet) {
    const std::wstring big(30000, L'x');
    const Variable self(L"PvSelf", L"%PvSelf%\\a");
    const Variable other(L"PvOther", L"%PvSelf%");
    const Variable longOne(L"PvLong", big.c_str());
    EXPECT_EQ(ExpandPath(L"%PvSelf%\\b"), L"%PvSelf%\\a\\b") << "a cycle ends at once";
    EXPECT_EQ(ExpandPath(L"%PVOTHER%"), L"%PvSelf%");
    EXPECT_EQ(ExpandPath(L"%PvNotSet%\\%"), L"%PvNotSet%\\%");
    EXPECT_EQ(ExpandPath(L"%PvLong%."), CString(big.c_str()) + L".");
    EXPECT_EQ(ExpandPath(L"%PvLong%%PvLong%"), L"%PvLong%%PvLong%") << "too long for the system, which would cut it";
    EXPECT_EQ(ExpandPath(L"%OS%" + CString(L'x', 40000)), L"%OS%" + CString(L'x', 40000));
    EXPECT_EQ(ExpandPath(L""), L"");
    EXPECT_EQ(ExpandPath(L"%SYSTEMroot%"), ExpandPath(L"%SystemRoot%")) << "off a boot image, any spelling";
}

TEST(ExpandPath, OnABootImageTheTargetsRootComesFirst) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion", L"SystemRoot", L"Q:\\Target");
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", software));
        const ImportPatch<decltype(&CountedExpansion)> patch(GetModuleHandleW(nullptr), "ExpandEnvironmentStringsW",
                                                             CountedExpansion);
        EXPECT_EQ(ExpandPath(L"%SystemRoot%\\x"), L"Q:\\Target\\x");
        EXPECT_EQ(ExpandPath(L"%SYSTEMDRIVE%\\x"), L"Q:\\x");
        EXPECT_EQ(ExpandPath(L"C:\\plain"), L"C:\\plain");
        EXPECT_EQ(s_calls, 0) << "the boot image's environment is not asked";
        const Variable variable(L"PvValue", L"v");
        EXPECT_EQ(ExpandPath(L"%SystemDrive%%PvValue%"), L"Q:v");
        EXPECT_EQ(ExpandPath(L"%SYSTEMroot%\\x"), L"C:\\windows\\x") << "a spelling that only the environment knows";
        EXPECT_EQ(s_calls, 4);
    });
}

TEST(GetEnvironmentValue, AsksTheCompanionWhileItsChannelIsOn) {
    PipePeer peer(L"text=theirs");
    const Variable variable(L"PvValue", L"ours");
    CString value;
    NamedPipeClient::pipeChannelEnabled = true;
    EXPECT_TRUE(GetEnvironmentValue(L"PvValue", value));
    EXPECT_EQ(value, L"theirs");
    NamedPipeClient::pipeChannelEnabled = false;
    EXPECT_TRUE(GetEnvironmentValue(L"PvValue", value));
    EXPECT_EQ(value, L"ours");
    EXPECT_TRUE(GetEnvironmentValue(L"PvNotSet", value));
    EXPECT_EQ(value, L"");
}

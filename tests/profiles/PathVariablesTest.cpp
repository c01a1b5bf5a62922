#include "profiles/PathVariables.h"

#include <gtest/gtest.h>
#include <string>

#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/ScopedPreinstallation.h"
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

// Counts the calls of ExpandEnvironmentStringsW, and answers `answer` for the call of that number.
class WatchedExpansion {
public:
    explicit WatchedExpansion(int failAt = 0, DWORD answer = 0)
        : m_patch(GetModuleHandleW(nullptr), "ExpandEnvironmentStringsW", Expand) {
        s_real = m_patch.Original();
        s_calls = 0;
        s_failAt = failAt;
        s_answer = answer;
    }
    static int Calls() { return s_calls; }

private:
    static DWORD WINAPI Expand(LPCWSTR text, LPWSTR buffer, DWORD chars) {
        return ++s_calls == s_failAt ? s_answer : s_real(text, buffer, chars);
    }

    static inline decltype(&ExpandEnvironmentStringsW) s_real = nullptr;
    static inline int s_calls = 0;
    static inline int s_failAt = 0;
    static inline DWORD s_answer = 0;
    ImportPatch<decltype(&ExpandEnvironmentStringsW)> m_patch;
};

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

TEST(ExpandPath, AFailingSystemLeavesTheText) {
    const Variable variable(L"PvValue", L"v");
    for (const DWORD answer : {0u, 100u}) {
        const WatchedExpansion failing(answer == 0 ? 1 : 2, answer);
        EXPECT_EQ(ExpandPath(L"%PvValue%"), L"%PvValue%");
    }
    EXPECT_EQ(ExpandPath(L"%PvValue%"), L"v");
}

TEST(ExpandPath, OnABootImageTheTargetsRootComesFirst) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion", L"SystemRoot", L"Q:\\Target");
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", software));
        const WatchedExpansion watched;
        EXPECT_EQ(ExpandPath(L"%SystemRoot%\\x"), L"Q:\\Target\\x");
        EXPECT_EQ(ExpandPath(L"%SYSTEMDRIVE%\\x"), L"Q:\\x");
        EXPECT_EQ(ExpandPath(L"C:\\plain"), L"C:\\plain");
        EXPECT_EQ(watched.Calls(), 0) << "the boot image's environment is not asked";
        const Variable variable(L"PvValue", L"v");
        EXPECT_EQ(ExpandPath(L"%SystemDrive%%PvValue%"), L"Q:v");
        EXPECT_EQ(ExpandPath(L"%SYSTEMroot%\\x"), L"C:\\windows\\x") << "a spelling that only the environment knows";
        EXPECT_EQ(watched.Calls(), 4);
    });
}

TEST(GetEnvironmentValue, ReadsAVariable) {
    const Variable variable(L"PvValue", L"v");
    CString value = L"before";
    EXPECT_TRUE(GetEnvironmentValue(L"pvvalue", value));
    EXPECT_EQ(value, L"v");
    EXPECT_TRUE(GetEnvironmentValue(L"PvNotSet", value));
    EXPECT_EQ(value, L"");
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
}

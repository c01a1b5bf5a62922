// Capture and apply on a real registry: beside the system's own importer, and when things fail.
#include "carry/Apply.h"

#include <winternl.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <ntstatus.h>

#include "carry/Capture.h"
#include "carry/SelectionWalk.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

// By the system, in a library that the program links; no header of the toolchain has it.
extern "C" NTSTATUS NTAPI NtDeleteKey(HANDLE key);

namespace {

constexpr wchar_t kBranch[] = L"HKEY_CURRENT_USER\\Software\\carry-test";
constexpr wchar_t kPath[] = L"Software\\carry-test";

std::string Utf16(const std::wstring& text) {
    return "\xFF\xFE" + std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}

int s_calls = 0;
int s_failAt = 0;
bool s_isKilled = false;

// Counts the steps of the work: writes of the undo file and changes. One of them fails, or never returns.
bool IsRefused() {
    if (++s_calls != s_failAt) return false;
    if (s_isKilled) TerminateProcess(GetCurrentProcess(), 77);
    return true;
}

// Stands before the system's function of that type, whose refusal is `Refusal`.
template <auto* Function, auto Refusal>
struct Step;
template <class Result, class... Arguments, Result(WINAPI* Function)(Arguments...), auto Refusal>
struct Step<Function, Refusal> {
    static inline Result(WINAPI* s_real)(Arguments...) = nullptr;

    explicit Step(const char* name)
        : m_patch(GetModuleHandleW(nullptr), name, [](Arguments... arguments) WINAPI -> Result {
              return IsRefused() ? static_cast<Result>(Refusal) : s_real(arguments...);
          }) {
        s_real = m_patch.Original();
    }
    ImportPatch<Result(WINAPI*)(Arguments...)> m_patch;
};

// From now on the step of that number fails, or ends the process.
class FailingSteps {
public:
    FailingSteps(int step, bool isKilled) {
        s_calls = 0;
        s_failAt = step;
        s_isKilled = isKilled;
    }

private:
    Step<WriteFile, FALSE> m_write{"WriteFile"};
    Step<FlushFileBuffers, FALSE> m_flush{"FlushFileBuffers"};
    Step<MoveFileExW, FALSE> m_move{"MoveFileExW"};
    Step<RegCreateKeyExW, ERROR_ACCESS_DENIED> m_create{"RegCreateKeyExW"};
    Step<RegSetValueExW, ERROR_ACCESS_DENIED> m_set{"RegSetValueExW"};
    Step<RegDeleteValueW, ERROR_ACCESS_DENIED> m_deleteValue{"RegDeleteValueW"};
    Step<NtDeleteKey, STATUS_ACCESS_DENIED> m_deleteKey{"NtDeleteKey"};
};

class Apply : public testing::Test {
protected:
    Apply() { Clear(); }
    ~Apply() override { Clear(); }

    static void Clear() { RemoveBranch({HKEY_CURRENT_USER, kPath}); }

    void Write(const std::wstring& body) {
        PutBytes(m_file, Utf16(L"Windows Registry Editor Version 5.00\r\n\r\n" + body));
    }
    // The branch as our own writer tells it, which shows every byte.
    std::string Branch() {
        Capture(m_target, RuleSelection({{CarryKind::Branch, kBranch, L""}}, FoldKeyCase), m_shown, {true, {}});
        return BytesOf(m_shown);
    }
    // The failure that the work throws, -1 for none.
    template <class Work>
    static int FailureOf(Work work) {
        try {
            work();
        } catch (const CarryException& problem) {
            return static_cast<int>(problem.Failure());
        }
        return -1;
    }

    const ScopedTestDir m_folder;
    const std::wstring m_file = m_folder.Path(L"file.reg");
    const std::wstring m_undo = m_folder.Path(L"undo.reg");
    const std::wstring m_shown = m_folder.Path(L"shown.reg");
    RegistryTarget m_target;
};

// Runs the command line to its end and gives the exit code.
DWORD RunToEnd(std::wstring command) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    while (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        // Wine says so, seldom and under load, of a process that ended before its first instruction.
        if (GetLastError() != ERROR_INTERNAL_ERROR) return GetLastError();
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

TEST_F(Apply, DamagedAndUnusualFilesDoWhatTheSystemsImporterDoes) {
    const std::wstring key = std::wstring(L"[") + kBranch + L"]\r\n";
    const struct {
        std::wstring body;
        const char* difference;  // null: none is wanted
    } cases[] = {
        {L"\"a\"=\"b\" ; c\r\n @ = \"d\"", nullptr},
        {L"\"a\"=\"b\"x\r\n\"c\"=\"d", nullptr},
        {L"\"a\"=\"x\\n\\r\\\\\\\"\\q\"", nullptr},
        {L"\"a\"=\"x\\0y\"\r\n\"b\\0\"=\"c\"", nullptr},
        {L"\"n\\nr\\r\"=\"v\"\r\n\"\\\"\"=\"q\"\r\n\"\\\\\"=\"s\"\r\n\"\\\"=\"t\"", nullptr},
        {L"\"a\"=dword:1\r\n\"b\"=dword:123456789\r\n\"c\"=dword:\r\n\"d\"=DWORD:1\r\n\"e\"=dword: aB", nullptr},
        {L"\"a\"=hex:1,2,\r\n\"b\"=hex: 01, 02 ;c\r\n\"c\"=hex:01 ,02\r\n\"d\"=hex:123\r\n\"e\"=hex:001", nullptr},
        {L"\"a\"=hex:0x1,+2\r\n\"b\"=hex:-1\r\n\"c\"=hex:,1\r\n\"d\"=hex:1,,2\r\n\"e\"=HEX:1", nullptr},
        {L"\"a\"=hex():1\r\n\"b\"=hex(g):1\r\n\"c\"=hex(+3):1\r\n\"d\"=hex(-3):1\r\n\"e\"=hex(0x3):1", nullptr},
        {L"\"a\"=hex(FF):1\r\n\"b\"=hex(3 ):1\r\n\"c\"=hex(3):\r\n\"d\"=hex(100000000):1\r\n\"e\"=hexx:1", nullptr},
        {L"\"a\"=hex(4):1,2\r\n\"b\"=hex(b):1\r\n\"c\"=hex(0):\r\n\"d\"=hex(6):41,00", nullptr},
        {L"\"a\"=hex:01,\\\r\n  02,\\ ;c\r\n\t03", nullptr},
        {L"\"a\"=hex:01,\\\r\n\r\n ;c\r\n02", nullptr},
        {L"\"a\"=hex:01,\\\r\n#c\r\n\"b\"=\"c\"", nullptr},
        {L"\"a\"=hex:01,\\\r\n\"b\"=\"c\"\r\n\"d\"=\"e\"", nullptr},
        {L"\"a\"=hex:01\\\r\n02\r\n\"b\"=\"c\"", nullptr},
        {L"\"a\"=hex:0\\\r\n1\r\n\"b\"=hex:\\\r\n1", nullptr},
        {L"\"a\"=hex:01,\\x\r\n02\r\n\"b\"=hex:1,\\\\\r\n2", nullptr},
        {L"\"a\"=hex:01,\\", nullptr},
        {L"\"a\"=hex:01,\\\r\n[" + std::wstring(kBranch) + L"\\k]\r\n\"b\"=\"c\"", nullptr},
        {L"\"a\"=\"1\"\r\n\"a\"=-\r\n\"b\"=\"1\"\r\n\"b\"=-x\r\n\"C\"=\"1\"\r\n\"c\"=- ;", nullptr},
        {L"\"a\"=\r\n\"b\"\r\n\"c\"x=\"d\"\r\ne=\"f\"\r\n\"g\"=h\r\n@x=\"i\"", nullptr},
        {L"[" + std::wstring(kBranch) + L"\\a]b[c] ; d\r\n\"v\"=\"1\"", nullptr},
        {L"[" + std::wstring(kBranch) + L"\\a]b[c] ; d]\r\n\"v\"=\"1\"", nullptr},
        {L"[" + std::wstring(kBranch) + L"\\\\a\\\\b\\]\r\n\"v\"=\"1\"", nullptr},
        {L"[ " + std::wstring(kBranch) + L"\\a]\r\n\"v\"=\"1\"", nullptr},
        {L"[" + std::wstring(kBranch) + L"\\a\r\n\"v\"=\"1\"", nullptr},
        {L"[HKEY_NONE\\a]\r\n\"v\"=\"1\"\r\n[]\r\n\"w\"=\"1\"", nullptr},
        {L"[hkcu\\software\\CARRY-TEST\\a]\r\n\"v\"=\"1\"", nullptr},
        {L"[" + std::wstring(kBranch) + L"\\a\\b]\r\n[-" + kBranch + L"\\a]\r\n\"v\"=\"1\"", nullptr},
        {L"[" + std::wstring(kBranch) + L"\\a]\r\n[- " + kBranch + L"\\a]\r\n[ -" + kBranch + L"\\a]", nullptr},
        {L"[-" + std::wstring(kBranch) + L"\\none]\r\n\"v\"=\"1\"", nullptr},
        {L"\"lo\xD83Dne\"=\"\xDC00\"\r\n\"\x0627\"=\"\xD83D\xDE00\"", nullptr},
        {L"\"tab\there\"=\"a\tb\"\r\n;\r\n#\r\n\r\n   \r\nrubbish", nullptr},
        {L"\"a\"=\"b\"\n\"c\"=\"d\"\r\"e\"=\"f\"\n\r\"g\"=\"h\"", nullptr},
        {L"\"" + std::wstring(16383, L'n') + L"\"=\"1\"\r\n\"" + std::wstring(16384, L'n') + L"\"=\"2\"", nullptr},
        {L"\"a\"=\"b\"" + std::wstring(1, L'\0') + L"\r\n\"c\"=\"d\"", nullptr},
        {L"\"a\"=hex(1):61,00,00,00,62,00,00,00", nullptr},
        {L"\"a\"=hex(2):61,00", "the importer adds the terminator that a text lacks; here the bytes are kept"},
        {L"\"a\"=hex(7):61,00,62", "the importer loses an odd byte; here the bytes are kept"},
    };
    for (const auto& each : cases) {
        Clear();
        Write(key + each.body);
        RunToEnd(L"reg import \"" + m_file + L"\"");
        const std::string imported = Branch();
        Clear();
        ::Apply(m_target, m_file, {});
        EXPECT_EQ(Branch() == imported, each.difference == nullptr) << testing::PrintToString(each.body);
    }
}

const std::wstring kBefore = std::wstring(L"[") + kBranch +
                             L"]\r\n\"keep\"=\"1\"\r\n\"change\"=hex(1):61,00\r\n\"go\"=hex:\r\n[" + kBranch +
                             L"\\gone\\deep]\r\n@=\"2\"\r\n";
const std::wstring kChange = std::wstring(L"[") + kBranch +
                             L"]\r\n\"change\"=\"x\"\r\n\"go\"=-\r\n\"come\"=dword:1\r\n[-" + kBranch +
                             L"\\gone]\r\n[" + kBranch + L"\\made\\deep]\r\n\"v\"=\"1\"\r\n";

TEST_F(Apply, AnEndAtAnyStepLeavesAnUndoFileThatWorksAndAFailureIsTakenBack) {
    Write(kBefore);
    ::Apply(m_target, m_file, {});
    const std::string before = Branch();
    Write(kChange);
    SetEnvironmentVariableW(L"CARRY_FILES", m_folder.Path().c_str());
    WCHAR program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring child =
        std::wstring(L"\"") + program + L"\" --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_EndsAtAStep";
    int step = 0;
    for (DWORD code = 77; code == 77;) {
        SetEnvironmentVariableW(L"CARRY_STEP", std::to_wstring(++step).c_str());
        code = RunToEnd(child);
        const bool hasUndo = GetFileAttributesW(m_undo.c_str()) != INVALID_FILE_ATTRIBUTES;
        if (hasUndo) ::Apply(m_target, m_undo, {});
        EXPECT_EQ(Branch(), before) << step;
        DeleteFileW(m_undo.c_str());
        if (code != 77) {
            EXPECT_TRUE(hasUndo && code == 0) << "the work was done: " << code;
            break;
        }
        {
            const FailingSteps failing(step, false);
            EXPECT_EQ(FailureOf([&] { ::Apply(m_target, m_file, {.undoFile = m_undo}); }),
                      static_cast<int>(hasUndo ? CarryFailure::TakenBack : CarryFailure::Failed));
        }
        EXPECT_EQ(GetFileAttributesW(m_undo.c_str()), INVALID_FILE_ATTRIBUTES);
        EXPECT_EQ(Branch(), before) << step;
    }
    EXPECT_EQ(step, 12);
}

// The process that the test above starts.
TEST(ApplyInAProcess, DISABLED_EndsAtAStep) {
    WCHAR step[8];
    WCHAR folder[MAX_PATH];
    ASSERT_NE(GetEnvironmentVariableW(L"CARRY_STEP", step, 8), 0U);
    ASSERT_NE(GetEnvironmentVariableW(L"CARRY_FILES", folder, MAX_PATH), 0U);
    const FailingSteps failing(_wtoi(step), true);
    RegistryTarget target;
    ::Apply(target, std::wstring(folder) + L"\\file.reg", {.undoFile = std::wstring(folder) + L"\\undo.reg"});
}

TEST_F(Apply, WhatIsRefusedOrCancelledChangesNothing) {
    Write(kBefore);
    ::Apply(m_target, m_file, {});
    const std::string before = Branch();
    for (const wchar_t* hive :
         {L"HKEY_LOCAL_MACHINE\\SOFTWARE", L"HKCU", L"HKEY_USERS\\.DEFAULT\\", L"HKLM\\\\SYSTEM"}) {
        Write(kChange + L"[-" + hive + L"]\r\n");
        EXPECT_EQ(FailureOf([&] { ::Apply(m_target, m_file, {.undoFile = m_undo}); }),
                  static_cast<int>(CarryFailure::Refused));
    }
    Write(kChange);
    for (int calls = 0, most = 1; most <= 9; calls = 0, ++most) {
        const int failure = FailureOf([&] {
            ::Apply(m_target, m_file,
                    {.undoFile = m_undo, .progress = [&](const CarryProgress&) { return ++calls < most; }});
        });
        // Called for each of three keys while they are checked; of two and the two in the branch that goes, for the
        // undo file; and of two while they are changed.
        EXPECT_EQ(failure, static_cast<int>(most <= 7 ? CarryFailure::Cancelled : CarryFailure::TakenBack)) << most;
        EXPECT_EQ(Branch(), before);
        EXPECT_EQ(GetFileAttributesW(m_undo.c_str()), INVALID_FILE_ATTRIBUTES);
    }
    const CarryReport report = ::Apply(m_target, m_file, {.dryRun = true});
    EXPECT_EQ(report.keys * 1000 + report.values * 100 + report.removedKeys * 10 + report.removedValues, 2311U);
    // A disk that is full leaves neither an undo file nor a change.
    const ImportPatch<decltype(&WriteFile)> full(GetModuleHandleW(nullptr), "WriteFile",
                                                 [](HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
                                                     SetLastError(ERROR_DISK_FULL);
                                                     return FALSE;
                                                 });
    EXPECT_EQ(FailureOf([&] { ::Apply(m_target, m_file, {.undoFile = m_undo}); }),
              static_cast<int>(CarryFailure::Failed));
    EXPECT_EQ(GetFileAttributesW(m_undo.c_str()), INVALID_FILE_ATTRIBUTES);
    PutBytes(m_file, "REGEDIT5\r\n");
    EXPECT_EQ(FailureOf([&] { ::Apply(m_target, m_file, {.undoFile = m_undo}); }),
              static_cast<int>(CarryFailure::NotARegistryFile));
    EXPECT_EQ(FailureOf([] { RegistryTarget({0, L"nobody here"}); }), static_cast<int>(CarryFailure::Failed));
}

}  // namespace

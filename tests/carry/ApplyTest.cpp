// Capture and apply on a real registry: beside the system's own importer, when things fail, through links, and for
// another user and an installation on another drive.
#include "carry/Apply.h"

#include <winternl.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <ntstatus.h>
#include <process.h>

#include "carry/Capture.h"
#include "helpers/UniqueHandle.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedTestDir.h"

// By the system, in a library that the program links; no header of the toolchain has it.
extern "C" NTSTATUS NTAPI NtDeleteKey(HANDLE key);

namespace {

const std::wstring kPath = L"Software\\carry-test";
const std::wstring kBranch = L"HKEY_CURRENT_USER\\" + kPath;
constexpr wchar_t kUserHive[] = L"D:\\Users\\ann\\NTUSER.DAT";

int s_calls = 0;
int s_failAt = 0;
bool s_isKilled = false;

// Stands before the system's function of that type and counts the steps of the work: writes of the undo file and
// changes. One of them is refused, or never returns.
template <auto* Function, auto Refusal>
struct Step;
template <class Result, class... Arguments, Result(WINAPI* Function)(Arguments...), auto Refusal>
struct Step<Function, Refusal> {
    static inline Result(WINAPI* s_real)(Arguments...) = nullptr;

    explicit Step(const char* name)
        : m_patch(GetModuleHandleW(nullptr), name, [](Arguments... arguments) WINAPI -> Result {
              if (++s_calls != s_failAt) return s_real(arguments...);
              if (s_isKilled) TerminateProcess(GetCurrentProcess(), 77);
              return static_cast<Result>(Refusal);
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

// Runs a program to its end and gives the exit code. Wine fails, seldom and under load, to start a process that ends
// before its first instruction.
template <class... Arguments>
intptr_t RunToEnd(const wchar_t* program, Arguments... arguments) {
    intptr_t code = -1;
    for (int attempt = 0; code == -1 && attempt < 20; ++attempt)
        code = _wspawnlp(_P_WAIT, program, L"it", arguments..., nullptr);
    return code;
}

class Carry : public testing::Test {
protected:
    Carry() { Clear(); }
    ~Carry() override { Clear(); }

    static void Clear() { RemoveBranch({HKEY_CURRENT_USER, kPath}); }

    void Write(const std::wstring& body) const {
        const std::wstring text = L"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n" + body;
        PutBytes(m_file, {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)});
    }
    // What a rule captures, as the file's text behind its header: our own writer shows every byte.
    std::wstring Captured(const RegistryTarget& target, CarryKind kind, const std::wstring& key,
                          std::uint64_t notes = 0) const {
        const CarryReport report = Capture(target, RuleSelection({{kind, key, L""}}, FoldKeyCase), m_shown, {true, {}});
        EXPECT_EQ(report.noteCount, notes);
        const std::string bytes = BytesOf(m_shown);
        const std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
        return text.substr(std::min(text.find(L'['), text.size()));
    }
    std::wstring Branch() const { return Captured(m_target, CarryKind::Branch, kBranch); }

    void ApplyText(RegistryTarget& target, const std::wstring& body) const {
        Write(body);
        Apply(target, m_file, {.undoFile = m_undo, .replaceFile = true});
    }
    // The failure that the work throws, and that of applying the file with an undo file.
    template <class Work>
    static std::optional<CarryFailure> FailureOf(Work work) {
        try {
            work();
        } catch (const CarryException& problem) {
            return problem.Failure();
        }
        return std::nullopt;
    }
    std::optional<CarryFailure> FailureOfApply(const CarryProgressFunction& progress = {}) {
        return FailureOf([&] { Apply(m_target, m_file, {.undoFile = m_undo, .progress = progress}); });
    }
    // No undo file, nor one that was begun.
    void ExpectNoUndoFile() const {
        WIN32_FIND_DATAW found;
        for (const wchar_t* name : {L"undo*", L"*.new"})
            EXPECT_EQ(FindFirstFileW(m_folder.Path(name).c_str(), &found), INVALID_HANDLE_VALUE);
    }

    const ScopedTestDir m_folder;
    const std::wstring m_file = m_folder.Path(L"file.reg");
    const std::wstring m_undo = m_folder.Path(L"undo.reg");
    const std::wstring m_shown = m_folder.Path(L"shown.reg");
    RegistryTarget m_target;
};

TEST_F(Carry, DamagedAndUnusualFilesDoWhatTheSystemsImporterDoes) {
    const std::wstring bodies[] = {
        L"\"a\"=\"b\" ; c\r\n @ = \"d\"",
        L"\"a\"=\"b\"x\r\n\"c\"=\"d",
        L"\"a\"=\"x\\n\\r\\\\\\\"\\q\"",
        L"\"a\"=\"x\\0y\"\r\n\"b\\0\"=\"c\"",
        L"\"n\\nr\\r\"=\"v\"\r\n\"\\\"\"=\"q\"\r\n\"\\\\\"=\"s\"\r\n\"\\\"=\"t\"",
        L"\"a\"=dword:1\r\n\"b\"=dword:123456789\r\n\"c\"=dword:\r\n\"d\"=DWORD:1\r\n\"e\"=dword: aB",
        L"\"a\"=hex:1,2,\r\n\"b\"=hex: 01, 02 ;c\r\n\"c\"=hex:01 ,02\r\n\"d\"=hex:123\r\n\"e\"=hex:001",
        L"\"a\"=hex:0x1,+2\r\n\"b\"=hex:-1\r\n\"c\"=hex:,1\r\n\"d\"=hex:1,,2\r\n\"e\"=HEX:1",
        L"\"a\"=hex():1\r\n\"b\"=hex(g):1\r\n\"c\"=hex(+3):1\r\n\"d\"=hex(-3):1\r\n\"e\"=hex(0x3):1",
        L"\"a\"=hex(FF):1\r\n\"b\"=hex(3 ):1\r\n\"c\"=hex(3):\r\n\"d\"=hex(100000000):1\r\n\"e\"=hexx:1",
        L"\"a\"=hex(4):1,2\r\n\"b\"=hex(b):1\r\n\"c\"=hex(0):\r\n\"d\"=hex(6):41,00",
        L"\"a\"=hex:01,\\\r\n  02,\\ ;c\r\n\t03",
        L"\"a\"=hex:01,\\\r\n\r\n ;c\r\n02",
        L"\"a\"=hex:01,\\\r\n#c\r\n\"b\"=\"c\"",
        L"\"a\"=hex:01,\\\r\n\"b\"=\"c\"\r\n\"d\"=\"e\"",
        L"\"a\"=hex:01\\\r\n02\r\n\"b\"=\"c\"",
        L"\"a\"=hex:0\\\r\n1\r\n\"b\"=hex:\\\r\n1",
        L"\"a\"=hex:01,\\x\r\n02\r\n\"b\"=hex:1,\\\\\r\n2",
        L"\"a\"=hex:01,\\",
        L"\"a\"=hex:01,\\\r\n[" + kBranch + L"\\k]\r\n\"b\"=\"c\"",
        L"\"a\"=\"1\"\r\n\"a\"=-\r\n\"b\"=\"1\"\r\n\"b\"=-x\r\n\"C\"=\"1\"\r\n\"c\"=- ;",
        L"\"a\"=\r\n\"b\"\r\n\"c\"x=\"d\"\r\ne=\"f\"\r\n\"g\"=h\r\n@x=\"i\"",
        L"[" + kBranch + L"\\a]b[c] ; d\r\n\"v\"=\"1\"",
        L"[" + kBranch + L"\\a]b[c] ; d]\r\n\"v\"=\"1\"",
        L"[" + kBranch + L"\\\\a\\\\b\\]\r\n\"v\"=\"1\"",
        L"[ " + kBranch + L"\\a]\r\n\"v\"=\"1\"",
        L"[" + kBranch + L"\\a\r\n\"v\"=\"1\"",
        L"[HKEY_NONE\\a]\r\n\"v\"=\"1\"\r\n[]\r\n\"w\"=\"1\"",
        L"[hkcu\\software\\CARRY-TEST\\a]\r\n\"v\"=\"1\"",
        L"[" + kBranch + L"\\a\\b]\r\n[-" + kBranch + L"\\a]\r\n\"v\"=\"1\"",
        L"[" + kBranch + L"\\a]\r\n[- " + kBranch + L"\\a]\r\n[ -" + kBranch + L"\\a]",
        L"[-" + kBranch + L"\\none]\r\n\"v\"=\"1\"",
        L"\"lo\xD83Dne\"=\"\xDC00\"\r\n\"\x0627\"=\"\xD83D\xDE00\"",
        L"\"tab\there\"=\"a\tb\"\r\n;\r\n#\r\n\r\n   \r\nrubbish",
        L"\"a\"=\"b\"\n\"c\"=\"d\"\r\"e\"=\"f\"\n\r\"g\"=\"h\"",
        L"\"" + std::wstring(16383, L'n') + L"\"=\"1\"\r\n\"" + std::wstring(16384, L'n') + L"\"=\"2\"",
        L"\"a\"=\"b\"" + std::wstring(1, L'\0') + L"\r\n\"c\"=\"d\"",
        L"\"a\"=hex(1):61,00,00,00,62,00,00,00",
        // Here the bytes are kept; the importer adds the terminator that a text lacks, and loses an odd byte.
        L"\"a\"=hex(2):61,00",
        L"\"a\"=hex(7):61,00,62",
    };
    const std::wstring key = L"[" + kBranch + L"]\r\n";
    for (const std::wstring& body : bodies) {
        Clear();
        Write(key + body);
        RunToEnd(L"reg", L"import", m_file.c_str());
        const std::wstring imported = Branch();
        Clear();
        Apply(m_target, m_file, {});
        EXPECT_EQ(Branch() == imported, &body < std::end(bodies) - 2) << testing::PrintToString(body);
    }
}

const std::wstring kBefore = L"[" + kBranch + L"]\r\n\"keep\"=\"1\"\r\n\"change\"=hex(1):61,00\r\n\"go\"=hex:\r\n[" +
                             kBranch + L"\\gone\\deep]\r\n@=\"2\"\r\n";
const std::wstring kChange = L"[" + kBranch + L"]\r\n\"change\"=\"x\"\r\n\"go\"=-\r\n\"come\"=dword:1\r\n[-" + kBranch +
                             L"\\gone]\r\n[" + kBranch + L"\\made\\deep]\r\n\"v\"=\"1\"\r\n";

TEST_F(Carry, AnEndAtAnyStepLeavesAnUndoFileThatWorksAndAFailureIsTakenBack) {
    Write(kBefore);
    Apply(m_target, m_file, {});
    const std::wstring before = Branch();
    Write(kChange);
    _wputenv_s(L"CARRY_FILES", m_folder.Path().c_str());
    int step = 0;
    for (bool isDone = false; !isDone;) {
        _wputenv_s(L"CARRY_STEP", std::to_wstring(++step).c_str());
        const intptr_t code =
            RunToEnd(_wpgmptr, L"--gtest_also_run_disabled_tests", L"--gtest_filter=*DISABLED_EndsAtAStep");
        isDone = code != 77;
        const bool hasUndo = GetFileAttributesW(m_undo.c_str()) != INVALID_FILE_ATTRIBUTES;
        if (hasUndo) Apply(m_target, m_undo, {});
        EXPECT_EQ(Branch(), before) << step;
        DeleteFileW(m_undo.c_str());
        if (isDone) {
            EXPECT_TRUE(hasUndo && code == 0) << code;
        } else {
            const FailingSteps failing(step, false);
            EXPECT_EQ(FailureOfApply(), hasUndo ? CarryFailure::TakenBack : CarryFailure::Failed);
        }
        EXPECT_EQ(GetFileAttributesW(m_undo.c_str()), INVALID_FILE_ATTRIBUTES);
        EXPECT_EQ(Branch(), before) << step;
    }
    EXPECT_EQ(step, 12);
}

// The process that the test above starts.
TEST(CarryInAProcess, DISABLED_EndsAtAStep) {
    const std::wstring folder = _wgetenv(L"CARRY_FILES");
    const FailingSteps failing(_wtoi(_wgetenv(L"CARRY_STEP")), true);
    RegistryTarget target;
    Apply(target, folder + L"\\file.reg", {.undoFile = folder + L"\\undo.reg"});
}

TEST_F(Carry, WhatIsRefusedOrCancelledChangesNothing) {
    Write(kBefore);
    Apply(m_target, m_file, {});
    const std::wstring before = Branch();
    for (const wchar_t* hive :
         {L"HKEY_LOCAL_MACHINE\\SOFTWARE", L"HKCU", L"HKEY_USERS\\.DEFAULT\\", L"HKLM\\\\SYSTEM"}) {
        Write(kChange + L"[-" + hive + L"]\r\n");
        EXPECT_EQ(FailureOfApply(), CarryFailure::Refused);
    }
    Write(kChange);
    for (int calls = 0, most = 1; most <= 9; calls = 0, ++most) {
        // Called for each of three keys while they are checked; of two and the two in the branch that goes, for the
        // undo file; and of two while they are changed.
        EXPECT_EQ(FailureOfApply([&](const CarryProgress&) { return ++calls < most; }),
                  most <= 7 ? CarryFailure::Cancelled : CarryFailure::TakenBack);
        EXPECT_EQ(Branch(), before);
        ExpectNoUndoFile();
    }
    const CarryReport report = Apply(m_target, m_file, {.dryRun = true});
    EXPECT_EQ(report.keys * 1000 + report.values * 100 + report.removedKeys * 10 + report.removedValues, 2311U);
    {
        // A disk that is full leaves neither an undo file nor a change.
        const ImportPatch<decltype(&WriteFile)> full(GetModuleHandleW(nullptr), "WriteFile",
                                                     [](HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
                                                         SetLastError(ERROR_DISK_FULL);
                                                         return FALSE;
                                                     });
        EXPECT_EQ(FailureOfApply(), CarryFailure::Failed);
    }
    ExpectNoUndoFile();
    EXPECT_EQ(Branch(), before);
    PutBytes(m_file, "REGEDIT5\r\n");
    EXPECT_EQ(FailureOfApply(), CarryFailure::NotARegistryFile);
    EXPECT_EQ(FailureOf([] { RegistryTarget({0, L"nobody here"}); }), CarryFailure::Failed);
}

TEST_F(Carry, LinksAreCarriedAndRemovedAsTheLinksTheyAre) {
    ScopedRegistryKey key(HKEY_LOCAL_MACHINE);
    key.SetText(L"target\\below", L"v", L"1");
    const std::wstring branch = L"HKEY_LOCAL_MACHINE\\" + key.Path();
    // To the key above it: whoever follows it comes to no end.
    const std::wstring goal = L"\\Registry\\Machine\\" + key.Path();
    HKEY link = nullptr;
    ASSERT_EQ(RegCreateKeyExW(key.Key(), L"link", 0, nullptr, REG_OPTION_CREATE_LINK, KEY_WRITE | KEY_CREATE_LINK,
                              nullptr, &link, nullptr),
              ERROR_SUCCESS);
    RegSetValueExW(link, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(goal.data()),
                   static_cast<DWORD>(goal.size() * sizeof(wchar_t)));
    RegCloseKey(link);
    const auto leadsToTarget = [&] {
        UniqueKey below;
        return OpenKey(key.Key(), L"link\\target\\below", KEY_READ, LinkMode::Follow, below) == ERROR_SUCCESS;
    };
    ASSERT_TRUE(leadsToTarget());

    const std::wstring before = Captured(m_target, CarryKind::Branch, branch);
    EXPECT_EQ(Captured(m_target, CarryKind::Key, branch), L"[" + branch + L"]\r\n\r\n") << "nothing of what lies below";
    EXPECT_TRUE(before.starts_with(L"[" + branch + L"]\r\n\r\n[" + branch +
                                   L"\\link]\r\n\"SymbolicLinkValue\"=hex(6):5c,00,52"));
    EXPECT_NE(before.find(L"\r\n\r\n[" + branch + L"\\target]"), before.npos);
    ApplyText(m_target, L"[-" + branch + L"\\link]\r\n");
    EXPECT_FALSE(leadsToTarget());
    UniqueKey below;
    EXPECT_EQ(OpenKey(key.Key(), L"target\\below", KEY_READ, LinkMode::Follow, below), ERROR_SUCCESS);
    below.reset();
    Apply(m_target, m_undo, {});
    EXPECT_TRUE(leadsToTarget());
    EXPECT_EQ(Captured(m_target, CarryKind::Branch, branch), before);
    RemoveBranch({HKEY_LOCAL_MACHINE, key.Path() + L"\\link"});
}

// Removes what it installs on drive D.
class Installation {
public:
    Installation() {
        HiveBuilder software, system, user;
        software.SetText(L"Example", L"v", L"of D");
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-7", L"ProfileImagePath",
                         L"%SystemDrive%\\Users\\ann", REG_EXPAND_SZ);
        system.SetNumber(L"Select", L"Current", 3);
        system.SetText(L"ControlSet003\\Services", L"v", L"3");
        user.SetText(L"Software\\Example", L"v", L"of ann");
        ScopedPreinstallation::Install(L'D', L"SOFTWARE", software);
        ScopedPreinstallation::Install(L'D', L"SYSTEM", system);
        user.Save(kUserHive);
    }
    ~Installation() {
        for (const wchar_t* folder : {L"D:\\Windows", L"D:\\Users"}) std::filesystem::remove_all(folder);
    }
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;
};

std::vector<std::wstring> KeysOf(HKEY root) {
    std::vector<std::wstring> names;
    WCHAR name[256];
    for (DWORD length = 256; RegEnumKeyW(root, static_cast<DWORD>(names.size()), name, length) == ERROR_SUCCESS;) {
        names.emplace_back(name);
    }
    return names;
}

TEST_F(Carry, AnInstallationAndItsUserAreReadChangedAndLeftWithNothingMounted) {
    const Installation installation;
    const auto machineBefore = KeysOf(HKEY_LOCAL_MACHINE);
    const auto usersBefore = KeysOf(HKEY_USERS);
    const std::wstring ofUser = L"[HKEY_CURRENT_USER\\Software\\Example]\r\n";
    for (const wchar_t* who : {L"ann", L"S-1-5-21-7", L"D:\\Users\\ann"}) {
        RegistryTarget target({L'D', who});
        EXPECT_EQ(Captured(target, CarryKind::Branch, L"HKLM\\software\\Example"),
                  L"[HKEY_LOCAL_MACHINE\\software\\Example]\r\n\"v\"=\"of D\"\r\n\r\n");
        EXPECT_EQ(Captured(target, CarryKind::Branch, L"HKLM\\SYSTEM\\CurrentControlSet\\Services"),
                  L"[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services]\r\n\"v\"=\"3\"\r\n\r\n");
        EXPECT_EQ(Captured(target, CarryKind::Branch, L"HKCU\\Software\\Example"),
                  ofUser + L"\"v\"=\"of ann\"\r\n\r\n");
        Captured(target, CarryKind::Key, L"HKU\\S-1-5-21-7\\Software", 1);
    }
    const std::wstring made = L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\New]\r\n\"w\"=\"2\"\r\n\r\n";
    {
        RegistryTarget target({L'D', L"ann"});
        ApplyText(target, ofUser + L"\"v\"=-\r\n" + made);
    }
    {
        RegistryTarget target({L'D', L"ann"});
        EXPECT_EQ(Captured(target, CarryKind::Key, L"HKCU\\Software\\Example"), ofUser + L"\r\n");
        EXPECT_EQ(Captured(target, CarryKind::Key, L"HKLM\\SOFTWARE\\New"), made);
        Apply(target, m_undo, {});
    }
    {
        RegistryTarget target({L'D', L"ann"});
        EXPECT_EQ(Captured(target, CarryKind::Key, L"HKLM\\SOFTWARE\\New", 1), L"");
        EXPECT_THROW(ApplyText(target, L"[HKEY_USERS\\S-1-5-21-7\\a]\r\n"), CarryException);
    }
    EXPECT_THROW(RegistryTarget({L'D', L"bob"}), CarryException);
    EXPECT_THROW(RegistryTarget({L'E', L""}), CarryException);
    {
        const auto reader =
            MakeUniqueHandle(CreateFileW(kUserHive, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_THROW(RegistryTarget({L'D', L"ann"}), CarryException);
    }
    PutBytes(kUserHive, "no hive");
    EXPECT_THROW(RegistryTarget({0, L"D:\\Users\\ann"}), CarryException);
    EXPECT_EQ(KeysOf(HKEY_LOCAL_MACHINE), machineBefore);
    EXPECT_EQ(KeysOf(HKEY_USERS), usersBefore);
}

}  // namespace

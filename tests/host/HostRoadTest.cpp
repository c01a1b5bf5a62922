// The whole program in this process: rules from the file, through the dialog, and back into the file or beside it.
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

#include "RulesFile.h"
#include "RulesHost.h"
#include "RulesTable.h"
#include "Utf8.h"
#include "resources/resource.h"
#include "support/DialogDriver.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/ScopedRegistryKey.h"
#include "support/ScopedTestDir.h"

namespace {

namespace fs = std::filesystem;

constexpr char Rules[] = R"({"format": "registry-rules", "version": 1, "rules": [
    {"type": "value", "key": "HKCU\\Environment", "value": "", "position": 0},
    {"type": "key", "key": "HKEY_CURRENT_USER\\Gr\u00f6\u00dfe", "position": 1}]})";
// With the rule that Edit makes.
const std::vector<HostRule> Edited{{HostRuleKind::Branch, "HKEY_LOCAL_MACHINE\\Software\\\u4E2D", "", 0},
                                   {HostRuleKind::Value, "HKEY_CURRENT_USER\\Environment", "", 1},
                                   {HostRuleKind::Key, "HKEY_CURRENT_USER\\Gr\u00F6\u00DFe", "", 2}};

void AddRule(Dialog& d) {
    d.Click(IDC_NEW_KEY);
    d.Type(L"hklm\\Software\\\u4E2D\r");
}

void Edit(Dialog& d) {
    AddRule(d);
    d.Click(IDOK);
}

// Ends what it stands for when it is let go.
using Undo = std::shared_ptr<const void>;

template <class Function>
Undo Patch(const char* name, Function replacement) {
    return std::make_shared<ImportPatch<Function>>(GetModuleHandleW(nullptr), name, replacement);
}

Undo Lock(const std::wstring& path, DWORD share) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
    return {file, [](const void* handle) { CloseHandle(const_cast<HANDLE>(handle)); }};
}

// Sends one of the process's standard streams into a file.
Undo Redirect(DWORD stream, const std::wstring& path) {
    const HANDLE before = GetStdHandle(stream);
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    SetStdHandle(stream, file);
    return {file, [=](const void*) { SetStdHandle(stream, before), CloseHandle(file); }};
}

class HostRoad : public testing::Test {
protected:
    // Runs the host while the script works its dialog; without a script none may appear.
    ExitCode Run(const std::vector<std::wstring>& arguments, const std::function<void(Dialog&)>& script = {}) {
        auto exitCode = static_cast<ExitCode>(-1);
        {
            const Undo output = Redirect(STD_OUTPUT_HANDLE, m_streams.Path(L"output"));
            const Undo errors = Redirect(STD_ERROR_HANDLE, m_streams.Path(L"errors"));
            const auto run = [&] { exitCode = RunHost(arguments); };
            script ? DialogDriver().Run(run, script) : run();
        }
        m_output = BytesOf(m_streams.Path(L"output"));
        m_errors = BytesOf(m_streams.Path(L"errors"));
        return exitCode;
    }

    // One line that says why.
    void ExpectError(const std::string& part) const {
        EXPECT_EQ(std::count(m_errors.begin(), m_errors.end(), '\n'), 1) << m_errors;
        EXPECT_TRUE(m_errors.starts_with("RulesHost: ") && m_errors.find(part) != std::string::npos) << m_errors;
    }
    std::vector<HostRule> Saved() const { return ParseRules(BytesOf(m_path)); }
    size_t FileCount() const {
        const fs::directory_iterator files(m_folder.Path());
        return static_cast<size_t>(std::distance(begin(files), end(files)));
    }

    const ScopedTestDir m_streams, m_folder;
    const std::wstring m_path = m_folder.Path(L"Regeln \u4E2D.json");
    std::string m_output, m_errors;
};

// Files whose path holds this stand on a volume without room.
std::wstring s_full;

bool HasRoom(HANDLE file) {
    wchar_t path[MAX_PATH] = {};
    GetFinalPathNameByHandleW(file, path, MAX_PATH, 0);
    if (std::wstring_view(path).find(s_full) == std::wstring_view::npos) return true;
    SetLastError(ERROR_DISK_FULL);
    return false;
}

// A write without room writes half, and fails or tells it only by the count.
template <BOOL Result>
Undo FillVolume(const std::wstring& part) {
    s_full = part;
    return Patch<decltype(&WriteFile)>(
        "WriteFile", [](HANDLE file, LPCVOID data, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped) {
            const auto write = SystemFunction(&WriteFile, L"kernel32.dll", "WriteFile");
            if (HasRoom(file)) return write(file, data, bytes, written, overlapped);
            write(file, data, bytes / 2, written, overlapped);
            HasRoom(file);  // sets the error again
            return Result;
        });
}

TEST_F(HostRoad, AChangedSetIsSavedInRowOrderWithFullHiveNames) {
    const auto ok = [](Dialog& d) { d.Click(IDOK); };
    const auto cancel = [](Dialog& d) {
        AddRule(d);
        d.Click(IDCANCEL);
        d.AnswerBox(IDYES);
    };
    EXPECT_EQ(Run({m_path}, ok), ExitCode::Done) << "a missing file is an empty set";
    EXPECT_EQ(FileCount(), 0U);
    PutBytes(m_path, Rules);
    EXPECT_EQ(Run({m_path}, Edit), ExitCode::Done);
    EXPECT_EQ(Saved(), Edited);
    EXPECT_EQ(FileCount(), 1U);
    EXPECT_EQ(m_errors, "");
    EXPECT_EQ(m_output, "Rules before, from " + ToReadableUtf8(m_path) + ":\n" + RulesTable(ParseRules(Rules)) +
                            "Rules after:\n" + RulesTable(Edited) + "Saved to " + ToReadableUtf8(m_path) + ".\n");
    const std::string saved = BytesOf(m_path);
    EXPECT_EQ(Run({m_path}, ok), ExitCode::Done);
    EXPECT_TRUE(m_output.ends_with("Nothing to save.\n")) << m_output;
    EXPECT_EQ(Run({m_path}, cancel), ExitCode::Done);
    EXPECT_EQ(BytesOf(m_path), saved);
    EXPECT_EQ(Run({}, Edit), ExitCode::Done);
    EXPECT_TRUE(m_output.ends_with(RulesTable({Edited[0]}) + "Not saved: no file.\n")) << m_output;

    PutBytes(m_path, FormatRules({{HostRuleKind::Key, "HKCU\\b", "", 65536}, {HostRuleKind::Key, "HKCU\\a", "", 0}}));
    const auto script = [this](Dialog& d) {
        EXPECT_NE(BytesOf(m_streams.Path(L"errors")), "") << "told before the dialog opens";
        EXPECT_EQ(d.List(IDC_RULE_LIST).Text(1, 1), L"HKCU\\b");
        d.Click(IDCANCEL);
    };
    EXPECT_EQ(Run({m_path}, script), ExitCode::Done);
    ExpectError("positions up to 32767 only: the rules beyond will change their order");
}

// What may happen while the dialog is open, and what is told then.
struct Trouble {
    const char* name;
    std::function<Undo(const std::wstring& path)> happens;
    const char* reason;
    const char* left = Rules;  // what stands in the file afterwards
    const wchar_t* unsaved = L"Regeln \u4E2D.unsaved-1.json";
};

const Trouble Troubles[] = {
    {"read-only",
     [](auto& path) {
         SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
         return Undo(&path, [path](auto) { SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL); });
     },
     "cannot replace the file: "},
    {"locked", [](auto& path) { return Lock(path, 0); }, "cannot open: "},
    {"being read", [](auto& path) { return Lock(path, FILE_SHARE_READ); }, "cannot replace the file: "},
    {"changed", [](auto& path) { return PutBytes(path, "mine"), nullptr; }, "another program has changed", "mine"},
    {"gone", [](auto& path) { return DeleteFileW(path.c_str()), nullptr; }, "another program has changed", ""},
    {"a number in use",
     [](auto& path) {
         PutBytes(path, "mine");
         PutBytes(fs::path(path).replace_extension(L"unsaved-1.json"), "of an earlier day");
         return nullptr;
     },
     "another program has changed", "mine", L"Regeln \u4E2D.unsaved-2.json"},
    {"no room", [](auto&) { return FillVolume<FALSE>(L".new"); }, "cannot write: "},
    {"less written", [](auto&) { return FillVolume<TRUE>(L".new"); }, "cannot write: "},
    {"no room, which shows in the end",
     [](auto&) {
         s_full = L".new";
         return Patch<decltype(&FlushFileBuffers)>("FlushFileBuffers",
                                                   [](HANDLE file) -> BOOL { return HasRoom(file); });
     },
     "cannot write: "},
    {"half a character",
     [](auto&) {
         SetWindowTextW(GetDlgItem(GetForegroundWindow(), IDC_NEW_KEY), L"HKLM\\Software\\\xD83D");
         return nullptr;
     },
     "half a surrogate pair"},
};

TEST_F(HostRoad, WhatCannotBeSavedInItsPlaceIsSavedBesideItAndTold) {
    for (const Trouble& trouble : Troubles) {
        SCOPED_TRACE(trouble.name);
        for (const auto& file : fs::directory_iterator(m_folder.Path())) fs::remove(file);
        PutBytes(m_path, Rules);
        size_t filesBefore = 0;
        Undo undo;
        const auto script = [&](Dialog& d) {
            AddRule(d);
            undo = trouble.happens(m_path);
            filesBefore = FileCount();
            d.Click(IDOK);
        };
        EXPECT_EQ(Run({m_path}, script), ExitCode::NotInPlace);
        undo.reset();
        const std::wstring unsaved = m_folder.Path(trouble.unsaved);
        ExpectError(trouble.reason);
        EXPECT_TRUE(m_errors.ends_with("; the rules are in " + ToReadableUtf8(unsaved) + "\n")) << m_errors;
        EXPECT_TRUE(m_output.ends_with("Rules after:\n" + RulesTable(ParseRules(BytesOf(unsaved))))) << m_output;
        EXPECT_NE(m_output.find("branch  HKEY_LOCAL_MACHINE\\Software\\\u4E2D\n"), std::string::npos) << m_output;
        EXPECT_EQ(BytesOf(m_path), trouble.left);
        EXPECT_EQ(FileCount(), filesBefore + 1);
    }
}

// Without a folder the rules go to the one for temporary files, and without room anywhere they are printed as a file.
TEST_F(HostRoad, WhatCannotBeSavedBesideItEitherIsNotLost) {
    PutBytes(m_path, Rules);
    const auto lose = [this](Dialog& d) {
        fs::remove_all(m_folder.Path());
        Edit(d);
    };
    EXPECT_EQ(Run({m_path}, lose), ExitCode::NotInPlace);
    const std::string told = "; the rules are in ";
    const auto place = m_errors.find(told) + told.size();
    const fs::path unsaved = FromUtf8(m_errors.substr(place, m_errors.size() - place - 1));
    EXPECT_EQ(unsaved.parent_path(), fs::temp_directory_path().parent_path());
    EXPECT_EQ(ParseRules(BytesOf(unsaved)), Edited);
    fs::remove(unsaved);

    fs::create_directory(m_folder.Path());
    PutBytes(m_path, Rules);
    const auto full = FillVolume<FALSE>(L"Regeln");
    EXPECT_EQ(Run({m_path}, Edit), ExitCode::Failed);
    ExpectError("cannot write: ");
    EXPECT_EQ(ParseRules(m_output.substr(m_output.find("{\n"))), Edited);
    EXPECT_EQ(BytesOf(m_path), Rules);
    EXPECT_TRUE(FileCount() == 1 && !fs::exists(unsaved));
}

// Two of the keys are not to be had: one is locked, one goes while its neighbours are read.
LSTATUS WINAPI OpenOthers(HKEY parent, LPCWSTR path, DWORD options, REGSAM access, PHKEY key) {
    if (std::wstring_view(path) == L"locked") return ERROR_ACCESS_DENIED;
    if (std::wstring_view(path) == L"gone") return ERROR_FILE_NOT_FOUND;
    return SystemFunction(&RegOpenKeyExW, L"advapi32.dll", "RegOpenKeyExW")(parent, path, options, access, key);
}

TEST_F(HostRoad, CommandsDoWhatCanBeDoneAndTellTheRestInOneLine) {
    ScopedRegistryKey key;
    key.SetText(L"", L"v", L"1");
    for (const wchar_t* below : {L"a", L"gone", L"locked", L"z"}) key.AddKey(below);
    const auto patch = Patch<decltype(&RegOpenKeyExW)>("RegOpenKeyExW", OpenOthers);
    const std::string path = "HKEY_CURRENT_USER\\" + ToReadableUtf8(key.Path());
    const std::wstring right = m_folder.Path(L"right.json"), carried = m_folder.Path(L"carried.reg"),
                       undo = m_folder.Path(L"undo.reg"), none = m_folder.Path(L"none.json"),
                       large = m_folder.Path(L"large.json"), wrong = m_folder.Path(L"wrong.json");
    const std::vector<HostRule> rules{{HostRuleKind::Branch, path, "", 0},
                                      {HostRuleKind::Value, path, "v", 1},
                                      {HostRuleKind::Value, path + "\\none", "v", 2},
                                      {HostRuleKind::Key, "Software", "", 3}};
    PutBytes(right, FormatRules({rules[0]}));
    PutBytes(m_path, FormatRules(rules));
    PutBytes(wrong, "{\r\n  \"format\": \"registry-rules\",\r\n  \"version\": 1, \"rules\": [{}]\r\n}");
    PutBytes(large, "");
    fs::resize_file(large, (64U << 20) + 1);
    const struct {
        std::vector<std::wstring> arguments;
        ExitCode code;
        std::string output, errors;  // parts of them
    } rows[] = {
        {{L"--help"}, ExitCode::Done, "Usage: RulesHost ", ""},
        {{L"-x"}, ExitCode::Failed, "", "unknown option -x"},
        {{L"one.json", L"two.json"}, ExitCode::Failed, "", "more than one file"},
        {{m_folder.Path()}, ExitCode::Failed, "", "cannot "},
        {{m_folder.Path(L"none\\rules.json")}, ExitCode::Failed, "", "cannot open: "},
        {{large}, ExitCode::Failed, "", "cannot read: "},
        {{wrong}, ExitCode::InvalidFile, "", "wrong.json: /rules/0: has no member \"type\"\n"},
        {{L"list", m_path},
         ExitCode::Told,
         "key    " + path + "\nvalue  " + path + "  v  REG_SZ  4\nkey    " + path,
         "locked: cannot be read"},
        {{L"list", right, L"--json"}, ExitCode::Told, R"("value":"v","type":"REG_SZ","size":4})", "gone: vanished"},
        {{L"check", m_path}, ExitCode::Told, "4 rules, 4 findings", ""},
        {{L"check", m_path, L"--json"}, ExitCode::Told, R"("finding": "is selected by /rules/0 already")", ""},
        {{L"check", right}, ExitCode::Done, "1 rules, 0 findings", ""},
        {{L"capture", m_path, carried}, ExitCode::Told, "carried.reg: 3 keys, 1 value, 4 bytes", "none of the five"},
        {{L"capture", right, carried}, ExitCode::Refused, "", "the file exists"},
        {{L"capture", right, carried, L"--json", L"--force"}, ExitCode::Told, R"("noteCount": 2)", "gone: vanished"},
        {{L"apply", carried}, ExitCode::Failed, "", "needs --undo"},
        {{L"apply", carried, L"--dry-run"}, ExitCode::Done, "would be applied: 3 keys, 1 value, 4 bytes", ""},
        {{L"apply", carried, L"--undo", undo, L"--json"}, ExitCode::Done, R"("values": 1)", ""},
        {{L"apply", carried, L"--undo", undo}, ExitCode::Refused, "", "the file exists"},
        {{L"apply", m_path, L"--undo", undo, L"--force"}, ExitCode::InvalidFile, "", "line 1: this is no registry"},
        {{L"apply", carried, L"--undo", undo, L"--user", L"nobody here"}, ExitCode::Failed, "", "no such user"},
        {{L"list", m_path, L"--offline", L"q:\\"}, ExitCode::Failed, "", "the hive cannot be mounted"},
        {{L"list", m_path, L"--offline", L"qq"}, ExitCode::Failed, "", "--offline takes a drive"},
        {{L"list", m_path, L"--undo", undo}, ExitCode::Failed, "", "unknown option --undo"},
        {{L"list", m_path, L"--user"}, ExitCode::Failed, "", "--user needs a value"},
        {{L"capture", m_path}, ExitCode::Failed, "", "capture takes two files"},
        {{L"list", none}, ExitCode::Failed, "", "none.json: there is no such file"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Run(row.arguments), row.code) << row.errors;
        EXPECT_NE(m_output.find(row.output), std::string::npos) << m_output;
        EXPECT_NE(m_errors.find(row.errors), std::string::npos) << m_errors;
        EXPECT_TRUE(!row.errors.empty() || m_errors.empty()) << m_errors;
        if (row.output.empty()) {
            EXPECT_EQ(m_output, "");
            ExpectError(row.errors);
        }
    }
    const std::string before = BytesOf(carried);
    const auto full = FillVolume<FALSE>(L".new");
    EXPECT_EQ(Run({L"capture", right, carried, L"--force"}), ExitCode::Failed);
    ExpectError("carried.reg: the file cannot be written");
    EXPECT_EQ(BytesOf(carried), before);
    EXPECT_EQ(FileCount(), 6U);
}

}  // namespace

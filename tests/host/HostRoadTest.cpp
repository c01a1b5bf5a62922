// The whole program in this process: rules from the file, through the dialog, back into the file.
#include <windows.h>

#include <algorithm>
#include <gtest/gtest.h>

#include "FileText.h"
#include "RulesFile.h"
#include "RulesHost.h"
#include "resources/resource.h"
#include "support/DialogDriver.h"
#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

namespace {

constexpr char Rules[] =
    R"({"format": "registry-rules", "version": 1, "rules": [
        {"type": "value", "key": "HKCU\\Environment", "value": "", "position": 0},
        {"type": "key", "key": "HKEY_CURRENT_USER\\Gr\u00f6\u00dfe", "position": 1}]})";

// Sends one of the process's standard streams into a file as long as it lives.
class RedirectedStream {
public:
    RedirectedStream(DWORD stream, const std::wstring& path) : m_stream(stream), m_before(GetStdHandle(stream)) {
        m_file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
        SetStdHandle(m_stream, m_file);
    }
    ~RedirectedStream() {
        SetStdHandle(m_stream, m_before);
        CloseHandle(m_file);
    }
    RedirectedStream(const RedirectedStream&) = delete;
    RedirectedStream& operator=(const RedirectedStream&) = delete;

private:
    DWORD m_stream;
    HANDLE m_before;
    HANDLE m_file;
};

class HostRoad : public testing::Test {
protected:
    // Runs the host, on the file unless told otherwise, while the script works its dialog; gives the exit code.
    int Run(const std::function<void(Dialog&)>& script) { return Run({m_path}, script); }
    int Run(const std::vector<std::wstring>& arguments, const std::function<void(Dialog&)>& script) {
        int exitCode = -1;
        DialogDriver().Run([&] { exitCode = RunBare(arguments); }, script);
        return exitCode;
    }
    int RunBare(const std::vector<std::wstring>& arguments) {
        int exitCode = -1;
        const ScopedTestDir streams;
        {
            const RedirectedStream output(STD_OUTPUT_HANDLE, streams.Path(L"output"));
            const RedirectedStream errors(STD_ERROR_HANDLE, streams.Path(L"errors"));
            exitCode = RunHost(arguments);
        }
        m_output = ReadFileText(streams.Path(L"output")).value_or("");
        m_errors = ReadFileText(streams.Path(L"errors")).value_or("");
        return exitCode;
    }
    // A run that is refused before any dialog appears: one line that says why.
    void ExpectRefused(const std::vector<std::wstring>& arguments, int code, const std::string& part) {
        EXPECT_EQ(RunBare(arguments), code);
        EXPECT_EQ(std::count(m_errors.begin(), m_errors.end(), '\n'), 1) << m_errors;
        EXPECT_TRUE(m_errors.starts_with("RulesHost: ")) << m_errors;
        EXPECT_NE(m_errors.find(part), std::string::npos) << m_errors;
        EXPECT_EQ(m_output, "");
    }

    static void AddRuleByStrip(Dialog& d, const std::wstring& key) {
        d.Click(IDC_NEW_KEY);
        d.Type(key);
        d.Key(VK_RETURN);
    }

    const ScopedTestDir m_folder;
    const std::wstring m_path = m_folder.Path(L"Regeln \x4E2D.json");
    std::string m_output;
    std::string m_errors;
};

TEST_F(HostRoad, AChangedSetIsSavedInRowOrderWithFullHiveNames) {
    ReplaceFileText(m_path, Rules);
    EXPECT_EQ(Run([](Dialog& d) {
                  AddRuleByStrip(d, L"hklm\\Software\\\x4E2D");
                  d.Click(IDOK);
              }),
              0);
    const std::vector<HostRule> expected{{HostRuleKind::Branch, "HKEY_LOCAL_MACHINE\\Software\\\u4E2D", "", 0},
                                         {HostRuleKind::Value, "HKEY_CURRENT_USER\\Environment", "", 1},
                                         {HostRuleKind::Key, "HKEY_CURRENT_USER\\Gr\u00F6\u00DFe", "", 2}};
    EXPECT_EQ(ParseRules(ReadFileText(m_path).value_or("")), expected);
    EXPECT_EQ(m_errors, "");
    const std::size_t after = m_output.find("Rules after:\n");
    ASSERT_NE(after, std::string::npos) << m_output;
    EXPECT_NE(m_output.find("value  HKCU\\Environment"), std::string::npos) << m_output;
    EXPECT_NE(m_output.find("HKEY_LOCAL_MACHINE\\Software\\\xE4\xB8\xAD", after), std::string::npos) << m_output;
}

TEST_F(HostRoad, AMissingFileIsAnEmptySetAndIsMadeButNoFileIsNotSaved) {
    const auto script = [](Dialog& d) {
        EXPECT_EQ(d.List(IDC_RULE_LIST).RowCount(), 0);
        AddRuleByStrip(d, L"HKCU\\Software");
        d.Click(IDOK);
    };
    EXPECT_EQ(Run(script), 0);
    EXPECT_EQ(ParseRules(ReadFileText(m_path).value_or("")),
              std::vector<HostRule>({{HostRuleKind::Branch, "HKEY_CURRENT_USER\\Software", "", 0}}));
    EXPECT_NE(m_output.find("(no rules)"), std::string::npos) << m_output;
    EXPECT_EQ(Run({}, script), 0);
    EXPECT_TRUE(m_output.ends_with("branch  HKEY_CURRENT_USER\\Software\nNot saved: no file.\n")) << m_output;
    EXPECT_EQ(RunBare({L"--help"}), 0);
    EXPECT_TRUE(m_output.starts_with("Usage: RulesHost [FILE]\n")) << m_output;
}

TEST_F(HostRoad, CancelAndAnOkWithoutChangeLeaveTheFileByteForByte) {
    ReplaceFileText(m_path, Rules);
    EXPECT_EQ(Run([](Dialog& d) { d.Click(IDOK); }), 0);
    EXPECT_EQ(ReadFileText(m_path), Rules);
    EXPECT_TRUE(m_output.ends_with("Nothing to save.\n")) << m_output;
    EXPECT_EQ(Run([](Dialog& d) {
                  AddRuleByStrip(d, L"HKCU\\Software");
                  d.Click(IDCANCEL);
                  d.AnswerBox(IDYES);
              }),
              0);
    EXPECT_EQ(ReadFileText(m_path), Rules);
}

TEST_F(HostRoad, WhatCannotBeSavedGivesCode1AndLeavesTheFileAsItWas) {
    ReplaceFileText(m_path, Rules);
    {
        const ImportPatch<decltype(&MoveFileExW)> patch(GetModuleHandleW(nullptr), "MoveFileExW",
                                                        [](LPCWSTR, LPCWSTR, DWORD) {
                                                            SetLastError(ERROR_SHARING_VIOLATION);
                                                            return FALSE;
                                                        });
        EXPECT_EQ(Run([](Dialog& d) {
                      AddRuleByStrip(d, L"HKCU\\Software");
                      d.Click(IDOK);
                  }),
                  1);
    }
    EXPECT_EQ(std::count(m_errors.begin(), m_errors.end(), '\n'), 1) << m_errors;
    EXPECT_EQ(Run([](Dialog& d) {
                  SetWindowTextW(d.Control(IDC_NEW_KEY), L"HKCU\\half \xD83D pair");
                  d.Click(IDOK);
              }),
              1);
    EXPECT_NE(m_errors.find("surrogate"), std::string::npos) << m_errors;
    EXPECT_EQ(ReadFileText(m_path), Rules);
}

TEST_F(HostRoad, WrongArgumentsAndFilesAreRefusedInOneLine) {
    ExpectRefused({L"--save", L"rules.json"}, 1, "");
    ExpectRefused({L"-x"}, 1, "");
    ExpectRefused({L"one.json", L"two.json"}, 1, "");
    ExpectRefused({m_folder.Path()}, 1, "");
    ExpectRefused({m_folder.Path(L"none\\rules.json")}, 1, "");
    const std::string text = "{\r\n  \"format\": \"registry-rules\",\r\n  \"version\": 1, \"rules\": [{}]\r\n}";
    ReplaceFileText(m_path, text);
    ExpectRefused({m_path}, 2, "Regeln \xE4\xB8\xAD.json: /rules/0: has no member \"type\"\n");
    EXPECT_EQ(ReadFileText(m_path), text);
}

}  // namespace

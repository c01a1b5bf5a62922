// The program as a process of its own: what needs no dialog.
#include <windows.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "FileText.h"
#include "support/ScopedTestDir.h"

namespace {

struct Outcome {
    DWORD exitCode = 0;
    std::string output;
    std::string errors;
};

HANDLE CreateInheritable(const std::wstring& path) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

std::wstring HostProgram() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.rfind(L'\\') + 1) + L"RulesHost.exe";
}

Outcome RunProgram(const std::wstring& arguments) {
    const ScopedTestDir folder;
    const std::wstring outputPath = folder.Path(L"output");
    const std::wstring errorsPath = folder.Path(L"errors");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = CreateInheritable(outputPath);
    startup.hStdError = CreateInheritable(errorsPath);
    std::wstring commandLine = L"\"" + HostProgram() + L"\" " + arguments;
    PROCESS_INFORMATION process{};
    const BOOL started =
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    Outcome outcome;
    if (!started) {
        ADD_FAILURE() << "the host did not start: " << GetLastError();
        return outcome;
    }
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60000), WAIT_OBJECT_0);
    GetExitCodeProcess(process.hProcess, &outcome.exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    outcome.output = ReadFileText(outputPath).value_or("");
    outcome.errors = ReadFileText(errorsPath).value_or("");
    return outcome;
}

void ExpectOneLine(const std::string& text) {
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_TRUE(text.ends_with('\n')) << text;
}

TEST(HostProcess, HelpTellsTheUsageAndTheExitCodes) {
    const Outcome help = RunProgram(L"--help");
    EXPECT_EQ(help.exitCode, 0u);
    EXPECT_TRUE(help.output.starts_with("Usage: RulesHost [FILE]\n")) << help.output;
    EXPECT_EQ(help.errors, "");
}

TEST(HostProcess, WrongArgumentsGiveOneLineAndCode1) {
    for (const wchar_t* arguments : {L"--save rules.json", L"-x", L"one.json two.json"}) {
        const Outcome outcome = RunProgram(arguments);
        EXPECT_EQ(outcome.exitCode, 1u);
        ExpectOneLine(outcome.errors);
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(HostProcess, AnInvalidFileGivesPlaceAndReasonAndCode2AndStaysAsItWas) {
    const ScopedTestDir folder;
    const std::wstring path = folder.Path(
        L"Gr\xF6\xDF"
        L"e \x4E2D.json");
    const std::string text = "{\r\n  \"format\": \"registry-rules\",\r\n  \"version\": 1, \"rules\": [{}]\r\n}";
    ReplaceFileText(path, text);
    const Outcome outcome = RunProgram(L"\"" + path + L"\"");
    EXPECT_EQ(outcome.exitCode, 2u);
    ExpectOneLine(outcome.errors);
    EXPECT_NE(outcome.errors.find("Gr\xC3\xB6\xC3\x9F"
                                  "e \xE4\xB8\xAD.json: /rules/0: has no member \"type\"\n"),
              std::string::npos)
        << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(ReadFileText(path), text);
}

TEST(HostProcess, AFileThatCannotBeReadGivesOneLineAndCode1) {
    const ScopedTestDir folder;
    for (const std::wstring& path : {folder.Path(), folder.Path(L"none\\rules.json")}) {
        const Outcome outcome = RunProgram(L"\"" + path + L"\"");
        EXPECT_EQ(outcome.exitCode, 1u);
        ExpectOneLine(outcome.errors);
        EXPECT_TRUE(outcome.errors.starts_with("RulesHost: ")) << outcome.errors;
    }
}

}  // namespace

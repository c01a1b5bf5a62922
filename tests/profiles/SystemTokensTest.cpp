#include "files/SystemTokens.h"

#include <gtest/gtest.h>

TEST(SystemTokens, ThreeSpellingsOfEachAndNoOther) {
    struct Case {
        std::wstring_view path;
        std::wstring_view root;
        std::wstring_view expected;
    };
    const Case cases[] = {
        {L"%SystemRoot%\\x", L"D:\\Windows", L"D:\\Windows\\x"},
        {L"%systemroot%;%SYSTEMROOT%;%SystemRoot%", L"D:\\W", L"D:\\W;D:\\W;D:\\W"},
        {L"%systemdrive%;%SYSTEMDRIVE%;%SystemDrive%;%SystemDrive%", L"D:\\W", L"D:;D:;D:;D:"},
        {L"%SYSTEMroot%\\x", L"D:\\W", L"%SYSTEMroot%\\x"},
        {L"%Systemdrive%", L"D:\\W", L"%Systemdrive%"},
        {L"%SystemRoot", L"D:\\W", L"%SystemRoot"},
        {L"%%SystemRoot%%", L"D:\\W", L"%D:\\W%"},
        {L"%SystemRoot%", L"", L"%SystemRoot%"},
        {L"%SystemDrive%", L"D", L"D"},
        // The drives are replaced after the roots, also in what a root brought in; nothing is replaced a second time.
        {L"%SystemRoot%", L"%SystemDrive%\\W", L"%S\\W"},
        {L"%SystemRoot%", L"%SystemRoot%", L"%SystemRoot%"},
        {L"", L"D:\\W", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)));
        EXPECT_EQ(ReplaceSystemTokens(c.path, c.root), c.expected);
    }
}

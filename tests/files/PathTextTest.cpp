// What each text operation on paths answers, also for paths that hardly anybody means.
#include <functional>
#include <gtest/gtest.h>

#include "files/LongPathPrefix.h"
#include "files/PathParts.h"
#include "files/PathRoots.h"

namespace {

using namespace PathText;
using View = std::wstring_view;

std::wstring Text(bool answer) {
    return answer ? L"yes" : L"";
}
std::wstring Text(View answer) {
    return std::wstring(answer);
}
std::wstring Text(const PathPieces& answer) {
    return answer.Joined();
}

using Operation = std::function<std::wstring(View path, View second)>;

template <class Answer>
Operation On(Answer (*call)(View)) {
    return [call](View path, View) { return Text(call(path)); };
}
template <class Answer>
Operation On(Answer (*call)(View, View)) {
    return [call](View path, View second) { return Text(call(path, second)); };
}

// Each case is input=answer; a second text that an operation takes stands behind a bar, and "yes" is true.
// clang-format off
const struct {
    const char* name;
    Operation operation;
    View cases;
} kRows[] = {
    {"GetParentPath", On(GetParentPath), LR"(=, a=, C:=, C:\=, \=, \a=, C:\a=C:\, C:\a\=C:\a, C:/a.b=, \\server=\,
        \\server\share=, \\server\share\a=\\server\share, \\\\=\\\, \\?\C:\a=\\?\C:, \\?\C:\=)"},
    {"GetFileName", On(GetFileName), LR"(=, a=a, C:=, \=, C:\=, \a=a, C:\a.b\c=c, C:\a\=, C:/a.b=C:/a.b,
        \\server=server, \\server\share=share, \\?\C:\a=a, \\?\a.b=)"},
    {"GetExtension", On(GetExtension), LR"(=, a=, .a=.a, C:\a.b.txt=.txt, a.b c=, a b.c=.c, a.b\c=, a.b/c=, a.=.,
        ..=.)"},
    {"GetNameWithoutExtension", On(GetNameWithoutExtension), LR"(.a=, C:\a.b.txt=a.b, a.b c=a.b c, C:/a.b=C:/a, ..=.,
        \\server\share.d=share, \\?\a.b=, C:=)"},
    {"CombinePath", On(CombinePath), LR"(C:\a|b=C:\a\b, C:\a.b|\b=\b, C:\a\/\|b=C:\a\b, C:\a|=C:\a\, |b=\b,
        \/|/b=\/b)"},
    {"ReplaceExtension", On(ReplaceExtension), LR"(C:\a|b=C:\ab, C:\a.b|\b=C:\a\b, C:\a.b|=C:\a, a.b/c|.d=a.b/c.d,
        a.b\c|.d=a.b\c.d, .a|.b=.b, a.b c|.d=a.d, |b=b)"},
    {"HoldsPath", On(HoldsPath), LR"(C:\A\B|C:\A=yes, C:\A|C:\A\=yes, C:\A\|C:\A=yes, X:\C:\A\B|C:\A=yes,
        C:\AB\C:\A|C:\A=yes, X|=yes, |=yes, |\=yes, C:\AB|C:\A=, C:\A\|C:\A\\=, |A=, C:\A|C:\A\B=)"},
    {"BelowBase", [](View path, View base) { return Text(BelowBase(path, base.size())); }, LR"(C:\A\\B|C:\A=B,
        C:\A|C:\A\=, C:\A\|C:\A=, C:\A|=C:\A)"},
    {"AbbreviatePath", On(AbbreviatePath), LR"(=, C:\1\2\3=C:\1\2\3, \\\\\=\\\\\...\, C:\1\2\3\n=C:\1\2\3\...\n,
        C:\1\2\3\4\5\n.dat=C:\1\2\3\...\n.dat, \\s\t\u\v=\\s\t\u\...\v)"},
    {"AddLongPathPrefix", On(AddLongPathPrefix), LR"(C:\a=\\?\C:\a, \\s\t\d=\\?\UNC\s\t\d, \\=\\?\UNC\, =\\?\,
        \a=\\?\\a, d:=\\?\d:\, \\?\C:=\\?\C:, \\?=\\?\UNC\?)"},
    {"RemoveLongPathPrefix", On(RemoveLongPathPrefix), LR"(C:\a=C:\a, \\?\C:\a=C:\a, \\?=\\?, \\?\UNC\s\t=\\s\t,
        \\?\uNc\s\t=\\s\t, \\?\uncs\t=uncs\t, \\?\\\?\C:=\\?\C:, \\?\UNC=UNC)"},
    {"IsRootPath", On(IsRootPath), LR"(\=yes, C:=yes, z:\=yes, \\?\C:=yes, \\?\C:\=yes, \\ab\c=yes, \\server\=yes,
        \\?\UNC=yes, =, C=, /=, 1:\=, C:\a=, C:/=, \\a\b=, \\server=, \\s\share\=, \\?\=)"},
    {"IsDrivePath", On(IsDrivePath), LR"(C:=yes, c:/=yes, C:\a=yes, \\?\C:\a=yes, =, C=, 1:\=, \\s\t=, \\?\UNC\=)"},
    {"IsUncPath", On(IsUncPath), LR"(\\\=yes, \\a\b=yes, \\s\t\d=yes, \\?\UNC\=yes, \\?\unc\s\t=yes, \\?\\\s\t=yes,
        \\=, \\server=, //s/t=, \\?\=, CON=, \\?\UNC=, =)"},
    {"IsDottedServerPath", On(IsDottedServerPath), LR"(\\server.example=yes, \\server.example\t=yes, \\.\COM1=yes,
        \\server\share.d=, server.example=, \\=)"},
    {"GetDriveRoot", On(GetDriveRoot), LR"(x:a=x:\, :C:=, a:b:c=a:\, 1:C:=, C:\a=C:\, \\?\d:\x=d:\, a=, =)"},
    {"GetUncRelativePart", On(GetUncRelativePart), LR"(\\s\t=, \\s\t\u\v=u\v, \\s\t/\u=u, =, \\?\d:\x=x, \\\\u=u,
        \\\\=, \/\/u=, C:\a\b=)"},
    {"GetUncRoot", On(GetUncRoot), LR"(\\s\t\u\v=\\s\t, \\s\t\=\\s\t, C:\a\=C:\a, \\\\u=, \/\/=, \\?\d:\x=\\?\d:,
        =)"},
};
// clang-format on

}  // namespace

TEST(PathText, EveryOperationOnEveryKindOfPath) {
    for (const auto& [name, operation, cases] : kRows) {
        for (View left = cases; !left.empty();) {
            const View row = left.substr(0, left.find(L','));
            left.remove_prefix(row.size());
            left.remove_prefix(std::min(left.find_first_not_of(L", \n"), left.size()));
            const View input = row.substr(0, row.find(L'=')), path = input.substr(0, input.find(L'|'));
            const View second = input.substr(std::min(path.size() + 1, input.size()));
            EXPECT_EQ(operation(path, second), row.substr(input.size() + 1))
                << name << " of " << testing::PrintToString(std::wstring(input));
        }
    }
}

TEST(PathText, LongTextsAndLettersOfOtherAlphabets) {
    const std::wstring x247(247, L'x'), x248 = x247 + L'x', x300(300, L'x'), x40000(40000, L'x'), prefix = L"\\\\?\\";
    const std::wstring share260 = L"\\\\s\\" + std::wstring(256, L't');
    EXPECT_EQ(GetExtension(L"\xdc00\\\xd800.\xd800"), L".\xd800");
    EXPECT_FALSE(IsDrivePath(L"\u00c4:\\") || HoldsPath(x40000, x40000 + L"y"));
    EXPECT_TRUE(HoldsPath(x40000, x40000) && NeedsLongPathPrefix(x248) && IsRootPath(L"\\\\" + x300 + L"\\t"));
    EXPECT_FALSE(NeedsLongPathPrefix(x247) || NeedsLongPathPrefix(prefix + x40000));
    EXPECT_TRUE(IsUncPath(L"\\\\s\\t\\" + x40000) && IsUncPath(prefix + L"UNC\\" + x300) && IsUncPath(share260));
    EXPECT_FALSE(IsUncPath(share260 + L"t") || IsUncPath(L"\\\\" + x300 + L"\\t"));
}

// The long-path wrappers and the directory tree against the bare calls that they stand for. The test for a
// preinstallation boot is asked afresh for every path, so the bare side asks it as well.
#include <string>
#include <vector>

#include "files/LongPathFile.h"
#include "files/PathHelper.h"
#include "support/Ratios.h"

namespace {

constexpr int kPaths = 10000;
constexpr int kLevels = 30;
constexpr int kTrees = 20;  // in each run
constexpr int kRuns = 25;   // short and many, because a busy machine disturbs long ones

void TestForPreinstallationBare() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\WinPE", 0, KEY_READ,
                      &key) == ERROR_SUCCESS) {
        RegCloseKey(key);
    }
}

bool ExistsBare(const CString& path) {
    TestForPreinstallationBare();
    WCHAR expanded[300];
    const DWORD chars = ExpandEnvironmentStringsW(path, nullptr, 0);
    ExpandEnvironmentStringsW(path, expanded, chars);
    TestForPreinstallationBare();
    return GetFileAttributesW(expanded) != INVALID_FILE_ATTRIBUTES;
}

void FindDriveBare() {
    WCHAR roots[260];
    Require(GetLogicalDriveStringsW(260, roots) != 0);
    for (LPCWSTR root = roots; *root != L'\0'; root += wcslen(root) + 1) GetDriveTypeW(root);
}

// A path and all above it below `top`, the topmost first.
std::vector<CString> PathsOfLevels(const CString& top) {
    std::vector<CString> paths;
    for (int level = 0; level < kLevels; ++level) paths.push_back((level == 0 ? top : paths.back()) + L"\\abc");
    return paths;
}

void CreateTreeBare(const std::vector<CString>& paths, const CString& top) {
    Require(!ExistsBare(paths.back()));
    FindDriveBare();
    for (int level = kLevels - 2; level >= 0; --level) Require(!ExistsBare(paths[static_cast<size_t>(level)]));
    Require(ExistsBare(top));
    for (const CString& path : paths) {
        TestForPreinstallationBare();
        Require(CreateDirectoryW(path, nullptr));
    }
}

// The seconds of all creations; removing the trees in between is not counted.
template <class Create>
double SecondsToCreateTrees(const std::vector<CString>& paths, Create create) {
    double seconds = 0;
    for (int tree = 0; tree < kTrees; ++tree) {
        seconds += SecondsOf(create);
        for (auto path = paths.rbegin(); path != paths.rend(); ++path) Require(RemoveDirectoryW(*path));
    }
    return seconds;
}

// A hundred folders, with every tenth of their paths there: where names ignore case, a missing one costs a look at all.
std::vector<CString> MakeFiles(const CString& top) {
    std::vector<CString> paths;
    for (int i = 0; i < kPaths; ++i) {
        const CString folder = top + L"\\" + std::to_wstring(i / 100).c_str();
        if (i % 100 == 0) Require(CreateDirectoryW(folder, nullptr));
        paths.push_back(folder + L"\\" + std::to_wstring(i % 100).c_str());
        if (i % 10 == 0) CloseHandle(CreateFileW(paths.back(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    }
    return paths;
}

}  // namespace

int wmain() {
    const CString top = CPathHelper::GetTempDirectory() + L"files-bench";
    Require(CreateDirectoryW(top, nullptr));
    const std::vector<CString> files = MakeFiles(top);
    const CString trees = top + L"\\trees";
    Require(CreateDirectoryW(trees, nullptr));
    const std::vector<CString> levels = PathsOfLevels(trees);

    Ratios ratios;
    const auto count = [&](auto attributesOf) {
        return Timed([&files, attributesOf] {
            int found = 0;
            for (const CString& file : files) found += attributesOf(file) != INVALID_FILE_ATTRIBUTES;
            Require(found == kPaths / 10);
        });
    };
    ratios.Compare("GetFileAttributes, 10,000 paths", 1.05,
                   count([](const CString& file) { return LongPath::GetFileAttributes(file); }),
                   count([](const CString& file) {
                       TestForPreinstallationBare();
                       return ::GetFileAttributesW(file);
                   }),
                   kRuns);
    ratios.Compare(
        "CreateDirectoryTree, 30 levels, 500 times", 1.2,
        [&] { return SecondsToCreateTrees(levels, [&] { Require(CPathHelper::CreateDirectoryTree(levels.back())); }); },
        [&] { return SecondsToCreateTrees(levels, [&] { CreateTreeBare(levels, trees); }); }, kRuns);
    CPathHelper::DeleteDirectory(top, true);
    ratios.Print();
    return 0;
}

// Lines of a text file of 100 MB against std::getline, and a million lines written against bare writes; or, with a
// number as argument, of so many MB, and 10,000 lines for each.
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>
#include <string>
#include <vector>

#include "files/TextFiles.h"
#include "files/Utf8TextFile.h"
#include "support/Ratios.h"

namespace {

const std::filesystem::path s_folder = std::filesystem::temp_directory_path() / L"TextFilesBench";

constexpr int kLineBytes = 25;
constexpr int kMegabyte = 1 << 20;
constexpr int kLinesForMegabyte = 10'000;

int LinesIn(int megabytes) {
    return megabytes * (kMegabyte / kLineBytes);
}

void MakeFile(const std::wstring& path, int megabytes) {
    std::ofstream stream(std::filesystem::path(path), std::ios::binary);
    std::string line = "a line of 25 bytes 00000\n";
    for (int i = 0; i < LinesIn(megabytes); ++i) {
        line[19] = static_cast<char>('0' + i % 10);
        stream << line;
    }
}

void ReadOurs(const std::wstring& path, int lines) {
    CStringList list;
    ReadTextLines(path.c_str(), list, false);
    Require(list.GetCount() == lines);
}

void ReadBare(const std::wstring& path, int lines) {
    std::list<std::wstring> list;
    std::ifstream stream(std::filesystem::path(path), std::ios::binary);
    for (std::string line; std::getline(stream, line);) {
        const int bytes = static_cast<int>(line.size());
        std::wstring& wide = list.emplace_back(line.size(), L'\0');
        wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, line.data(), bytes, wide.data(), bytes)));
    }
    Require(list.size() == static_cast<size_t>(lines));
}

constexpr char kText[] = "a line of 30 bytes in UTF-8 \r\n";

void WriteOurs(const std::wstring& path, int lines) {
    CUtf8TextFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    const CString line(L"a line of 30 bytes in UTF-8 \r\n");
    for (int i = 0; i < lines; ++i) file.WriteString(line);
}

void WriteBare(const std::wstring& path, int lines) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD done = 0;
    for (int i = 0; i < lines; ++i) {
        Require(WriteFile(file, kText, sizeof(kText) - 1, &done, nullptr) && done == sizeof(kText) - 1);
    }
    CloseHandle(file);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const int all = argc > 1 ? _wtoi(argv[1]) : 100;
    const int lines = all * kLinesForMegabyte;
    const std::vector<int> sizes{all / 8, all / 4, all / 2};
    std::filesystem::create_directory(s_folder);
    const auto pathOf = [](int megabytes) { return (s_folder / std::to_wstring(megabytes)).wstring(); };
    for (const int megabytes : sizes) MakeFile(pathOf(megabytes), megabytes);
    MakeFile(pathOf(all), all);

    Ratios ratios;
    ratios.Compare("ReadTextLines, short lines", 1, Timed([&] { ReadOurs(pathOf(all), LinesIn(all)); }),
                   Timed([&] { ReadBare(pathOf(all), LinesIn(all)); }), 5);
    // Below the size of the comparison, which takes most of the time already.
    ratios.Grow("ReadTextLines, MB", kLinear, sizes,
                [&](int megabytes) { return SecondsOf([&] { ReadOurs(pathOf(megabytes), LinesIn(megabytes)); }); });
    ratios.Compare("WriteString, short lines", 1.3, Timed([&] { WriteOurs(s_folder / L"ours", lines); }),
                   Timed([&] { WriteBare(s_folder / L"bare", lines); }), 5);
    std::filesystem::remove_all(s_folder);
    ratios.Print();
    return 0;
}

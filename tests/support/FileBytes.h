// What stands in a file, and what a file operation throws, without the classes under test.
#pragma once

#include <afx.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/Throws.h"

inline constexpr std::string_view kMark = "\xEF\xBB\xBF";

inline std::string BytesOf(const std::wstring& path) {
    std::ifstream stream(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void PutBytes(const std::wstring& path, std::string_view bytes) {
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

// The cause of the CFileException that `work` throws; -1 if it throws none.
template <class Work>
int CauseOf(Work work) {
    int cause = -1;
    Throws<CFileException>(work, [&](const CFileException& problem) { cause = problem.m_cause; });
    return cause;
}

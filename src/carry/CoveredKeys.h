// The branches for which an undo file already holds all that can happen below them.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>

class CoveredKeys {
public:
    // Paths in one letter case. What is added beyond so many characters is forgotten: such a branch is written again.
    static constexpr std::size_t kMostChars = 1U << 20U;

    void Add(const std::wstring& path);
    bool IsEmpty() const { return m_paths.empty(); }
    // Whether the key or one above it was added.
    bool Contains(std::wstring path) const;

private:
    std::unordered_set<std::wstring> m_paths;
    std::size_t m_chars = 0;
};

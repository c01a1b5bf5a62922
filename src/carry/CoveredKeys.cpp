#include "carry/CoveredKeys.h"

void CoveredKeys::Add(const std::wstring& path) {
    if (m_chars + path.size() > kMostChars) return;
    if (m_paths.insert(path).second) m_chars += path.size();
}

bool CoveredKeys::Contains(std::wstring path) const {
    while (!m_paths.contains(path)) {
        const auto end = path.rfind(L'\\');
        if (end == path.npos) return false;
        path.resize(end);
    }
    return true;
}

#include "carry/ValueBuffer.h"

#include <algorithm>

namespace {

constexpr DWORD kLongestName = 16383;
constexpr size_t kFirstData = 0x1000;

}  // namespace

ValueBuffer::ValueBuffer() : m_name(kLongestName + 1), m_data(kFirstData) {}

// Calls `read` with room for the data until it is enough.
template <class Read>
LONG ValueBuffer::Fill(Read read) {
    for (;;) {
        m_bytes = static_cast<DWORD>(m_data.size());
        const LONG status = read();
        if (status != ERROR_MORE_DATA) return status;
        // The system tells how much it wants. If that should not be more, somebody has set another value meanwhile.
        if (m_bytes > kLargestData || m_data.size() > kLargestData) {
            m_bytes = 0;
            return status;
        }
        m_data.assign(std::max<size_t>(m_bytes, m_data.size() * 2), 0);
    }
}

LONG ValueBuffer::Enumerate(HKEY key, DWORD index) {
    return Fill([&] {
        m_nameLength = kLongestName + 1;
        return RegEnumValueW(key, index, m_name.data(), &m_nameLength, nullptr, &m_type, m_data.data(), &m_bytes);
    });
}

LONG ValueBuffer::Query(HKEY key, std::wstring_view name) {
    m_nameLength = static_cast<DWORD>(std::min<size_t>(name.size(), kLongestName));
    std::copy_n(name.begin(), m_nameLength, m_name.begin());
    m_name[m_nameLength] = L'\0';
    return Fill([&] { return RegQueryValueExW(key, m_name.data(), nullptr, &m_type, m_data.data(), &m_bytes); });
}

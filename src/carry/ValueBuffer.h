// One value of a key at a time, read into memory that is used again.
#pragma once

#include <windows.h>

#include <span>
#include <string_view>
#include <vector>

class ValueBuffer {
public:
    // What a registry file can hold: 64 MiB. The data of a larger value are not read.
    static constexpr DWORD kLargestData = 64U << 20U;

    ValueBuffer();

    // Win32 statuses: ERROR_NO_MORE_ITEMS behind the last value, ERROR_FILE_NOT_FOUND for a missing one, and
    // ERROR_MORE_DATA, with the name and the type alone, for one of more than kLargestData.
    LONG Enumerate(HKEY key, DWORD index);
    LONG Query(HKEY key, std::wstring_view name);

    std::wstring_view Name() const { return {m_name.data(), m_nameLength}; }
    DWORD Type() const { return m_type; }
    std::span<const BYTE> Data() const { return {m_data.data(), m_bytes}; }

private:
    template <class Read>
    LONG Fill(Read read);

    std::vector<WCHAR> m_name;
    DWORD m_nameLength = 0;
    DWORD m_type = REG_NONE;
    std::vector<BYTE> m_data;
    DWORD m_bytes = 0;
};

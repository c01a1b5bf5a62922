#include "carry/RegistryFileWriter.h"

#include <array>
#include <utility>

#include "carry/RegistryFileText.h"

namespace {

constexpr std::uint32_t kText = 1;
constexpr std::uint32_t kBinary = 3;
constexpr std::uint32_t kNumber = 4;

constexpr std::size_t kBlockUnits = 0x8000;
// A line of bytes is broken behind the comma that reaches this column, so that it ends before the 81st.
constexpr std::size_t kLastColumn = 77;

constexpr std::wstring_view kDigits = L"0123456789abcdef";

void AppendHexNumber(std::wstring& text, std::uint32_t number) {
    std::array<wchar_t, 8> digits{};
    std::size_t first = digits.size();
    do {
        digits[--first] = kDigits[number & 0xFU];
        number >>= 4U;
    } while (number != 0);
    text.append(digits.data() + first, digits.size() - first);
}

void AppendByte(std::wstring& text, std::uint8_t byte) {
    const std::array<wchar_t, 2> digits{kDigits[byte >> 4U], kDigits[byte & 0xFU]};
    text.append(digits.data(), digits.size());
}

// Whether the bytes are a text and its terminator, with no other zero: only that comes back from between quotes.
bool IsProperText(std::span<const std::uint8_t> data) {
    if (data.size() < 2 || data.size() % 2 != 0) return false;
    for (std::size_t i = 0; i + 2 < data.size(); i += 2) {
        if (data[i] == 0 && data[i + 1] == 0) return false;
    }
    return data[data.size() - 2] == 0 && data[data.size() - 1] == 0;
}

}  // namespace

bool IsWritableKeyName(std::wstring_view name) {
    return name.find_first_of(std::wstring_view(L"\0\r\n", 3)) == name.npos;
}

bool IsWritableValueName(std::wstring_view name) {
    return name.find(L'\0') == name.npos;
}

RegistryFileWriter::RegistryFileWriter(Write write) : m_write(std::move(write)) {
    m_text.append(1, L'\xFEFF').append(kRegistryFileHeader).append(L"\r\n");
}

void RegistryFileWriter::Key(std::wstring_view path) {
    m_text.append(L"\r\n[").append(path).append(L"]\r\n");
    Flush(kBlockUnits);
}

void RegistryFileWriter::KeyRemoval(std::wstring_view path) {
    m_text.append(L"\r\n[-").append(path).append(L"]\r\n");
    Flush(kBlockUnits);
}

void RegistryFileWriter::Value(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) {
    const std::size_t start = m_text.size();
    Name(name);
    if (type == kText && IsProperText(data)) {
        Text(data.first(data.size() - 2));
    } else if (type == kNumber && data.size() == 4) {
        m_text += L"dword:";
        for (std::size_t i = 4; i-- > 0;) AppendByte(m_text, data[i]);
    } else {
        m_text += L"hex";
        if (type != kBinary) {
            m_text += L'(';
            AppendHexNumber(m_text, type);
            m_text += L')';
        }
        m_text += L':';
        Bytes(data, m_text.size() - start);
    }
    m_text += L"\r\n";
    Flush(kBlockUnits);
}

void RegistryFileWriter::ValueRemoval(std::wstring_view name) {
    Name(name);
    m_text += L"-\r\n";
    Flush(kBlockUnits);
}

void RegistryFileWriter::Finish() {
    m_text += L"\r\n";
    Flush(0);
}

void RegistryFileWriter::Name(std::wstring_view name) {
    if (name.empty()) {
        m_text += L'@';
    } else {
        m_text += L'"';
        AppendEscaped(m_text, name);
        m_text += L'"';
    }
    m_text += L'=';
}

void RegistryFileWriter::Text(std::span<const std::uint8_t> units) {
    m_text += L'"';
    for (std::size_t i = 0; i < units.size(); i += 2) {
        const auto unit = static_cast<wchar_t>(units[i] | units[i + 1] << 8);
        AppendEscaped(m_text, {&unit, 1});
        if (m_text.size() >= 2 * kBlockUnits) Flush(kBlockUnits);
    }
    m_text += L'"';
}

void RegistryFileWriter::Bytes(std::span<const std::uint8_t> data, std::size_t column) {
    for (std::size_t i = 0; i < data.size(); ++i) {
        AppendByte(m_text, data[i]);
        if (i + 1 == data.size()) break;
        m_text += L',';
        column += 3;
        if (column >= kLastColumn) {
            m_text += L"\\\r\n  ";
            column = 2;
            Flush(kBlockUnits);
        }
    }
}

void RegistryFileWriter::Flush(std::size_t most) {
    if (m_text.size() <= most) return;
    m_unitsWritten += m_text.size();
    m_write(m_text);
    m_text.clear();
}

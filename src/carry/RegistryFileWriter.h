// Writes the text of a registry file of version 5.00, byte for byte as the system's own tool does where that loses
// nothing. It leaves out what does not end a text in a proper way, and the bytes of a REG_DWORD beyond four; here such
// a value is written as bytes with its type ("hex(1):"), which every system reads.
//
//     RegistryFileWriter writer([&](std::wstring_view text) { file.Write(text); });
//     writer.Key(L"HKEY_CURRENT_USER\\Software\\Example");
//     writer.Value(L"Name", REG_SZ, bytes);
//     writer.Finish();
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

// Whether a name can stand in the format: one with a zero in it cannot, nor a key's with an end of line.
bool IsWritableKeyName(std::wstring_view name);
bool IsWritableValueName(std::wstring_view name);

class RegistryFileWriter {
public:
    // Receives the text in blocks, beginning with the mark U+FEFF.
    using Write = std::function<void(std::wstring_view)>;

    explicit RegistryFileWriter(Write write);

    // Values that follow belong to the key.
    void Key(std::wstring_view path);
    void KeyRemoval(std::wstring_view path);
    // An empty name is the key's default value.
    void Value(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data);
    void ValueRemoval(std::wstring_view name);
    // Hands over what is left. Nothing may follow.
    void Finish();

    // Bytes of the file so far.
    std::uint64_t Size() const { return 2 * (m_unitsWritten + m_text.size()); }

private:
    void Name(std::wstring_view name);
    void Text(std::span<const std::uint8_t> units);
    void Bytes(std::span<const std::uint8_t> data, std::size_t column);
    void Flush(std::size_t most);

    Write m_write;
    std::wstring m_text;
    std::uint64_t m_unitsWritten = 0;
};

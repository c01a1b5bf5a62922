// The first byte says how the rest, UTF-16 units, is cut into blocks. However that is, the file says the same; and what
// it says, written and read again, says the same once more.
#include <algorithm>

#include "carry/RegistryFileReader.h"
#include "carry/RegistryFileWriter.h"
#include "fuzz/FuzzInput.h"

namespace {

// Writes what it is told, so that two files can be compared.
class Copy final : public RegistryFileSink {
public:
    void OnKey(const KeyName& key) override { m_writer.Key(FormatKeyName(key)); }
    void OnKeyRemoval(const KeyName& key) override { m_writer.KeyRemoval(FormatKeyName(key)); }
    void OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) override {
        m_writer.Value(name, type, data);
    }
    void OnValueRemoval(std::wstring_view name) override { m_writer.ValueRemoval(name); }
    void OnSkipped(SkippedLine) override { ++m_skipped; }

    std::wstring m_text;
    RegistryFileWriter m_writer{[this](std::wstring_view text) { m_text += text; }};
    int m_skipped = 0;
};

// Empty when it is no registry file.
std::wstring Read(std::wstring_view text, std::size_t blockUnits, int& skipped) {
    Copy copy;
    RegistryFileReader reader(copy);
    try {
        for (; !text.empty(); text.remove_prefix(std::min(blockUnits, text.size()))) {
            reader.Add(text.substr(0, blockUnits));
        }
        reader.Finish();
    } catch (const RegistryFileError&) {
        return {};
    }
    copy.m_writer.Finish();
    skipped = copy.m_skipped;
    return copy.m_text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::wstring text = L"Windows Registry Editor Version 5.00\r\n" + Utf16Units(data + 1, size - 1);
    int skipped = 0;
    int again = 0;
    const std::wstring whole = Read(text, text.size(), skipped);
    Require(Read(text, 1U + (data[0] & 0x3FU), again) == whole && again == skipped);
    if (whole.empty()) return 0;
    Require(Read(std::wstring_view(whole).substr(1), 100, again) == whole && again == 0);
    return 0;
}

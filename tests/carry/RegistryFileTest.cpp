// The format, without a system: what is read, in blocks cut anywhere, and what is written.
#include <gtest/gtest.h>

#include "carry/RegistryFileReader.h"
#include "carry/RegistryFileWriter.h"

namespace {

std::wstring Wide(std::string_view text) {
    return {text.begin(), text.end()};
}

// Writes down what it is told: "K path", "V name 1 6100", "-K path", "-V name", "!reason line".
class Notes final : public RegistryFileSink {
public:
    void OnKey(const KeyName& key) override { Add(L"K " + FormatKeyName(key)); }
    void OnKeyRemoval(const KeyName& key) override { Add(L"-K " + FormatKeyName(key)); }
    void OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) override {
        std::wstring text = L"V " + std::wstring(name) + L" " + std::to_wstring(type) + L" ";
        for (const std::uint8_t byte : data) {
            text += L"0123456789abcdef"[byte >> 4];
            text += L"0123456789abcdef"[byte & 15];
        }
        EXPECT_EQ(data.data()[data.size()] + data.data()[data.size() + 1], 0x1FE);
        Add(text);
    }
    void OnValueRemoval(std::wstring_view name) override { Add(L"-V " + std::wstring(name)); }
    void OnSkipped(SkippedLine reason) override {
        Add(L"!" + std::to_wstring(static_cast<int>(reason)) + L" " + std::to_wstring(m_reader->Line()));
    }

    void Add(const std::wstring& text) { m_text += text + L"|"; }
    std::wstring m_text;
    const RegistryFileReader* m_reader = nullptr;
};

std::wstring ReadBy(std::wstring_view text, std::size_t blockUnits, RegistryFileReader::FromAnsi fromAnsi = nullptr) {
    Notes notes;
    RegistryFileReader reader(notes, fromAnsi);
    notes.m_reader = &reader;
    for (; !text.empty(); text.remove_prefix(std::min(blockUnits, text.size()))) reader.Add(text.substr(0, blockUnits));
    reader.Finish();
    return notes.m_text;
}

constexpr wchar_t kStart[] = L"Windows Registry Editor Version 5.00\r\n\r\n[HKCU\\T]\r\n";

TEST(RegistryFile, EachLineSaysWhatItSaysToTheSystemHoweverTheTextIsCut) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {LR"("a"="b")", L"V a 1 62000000|"},
        {LR"( @	= "b" ; c)", L"V  1 62000000|"},
        {LR"("a\"\\\n\r\x"="\"\\\n\r\x")", L"V a\"\\\n\rx 1 22005c000a000d0078000000|"},
        {LR"("a\0"="b")", L"!0 4|"},
        {LR"("a"="\0")", L"!3 4|"},
        {LR"("a"="b)", L"!3 4|"},
        {LR"("a"=-;c)", L"-V a|"},
        {LR"("a"=dword:	120001aB ;c)", L"V a 4 ab010012|"},
        {LR"("a"=dword:123456789)", L"!3 4|"},
        {LR"("a"=hex:)", L"V a 3 |"},
        {LR"("a"=hex: 1,0x2,+003, ;c)", L"V a 3 010203|"},
        {LR"("a"=hex(-1):1)", L"V a 4294967295 01|"},
        {L"\"a\"=hex:\\ ;c\r\n;c\r\n\r\n 01,\\\n02", L"V a 3 0102|"},
        {L"\"a\"=hex:01\\\r\n02", L"!3 4|!0 5|"},
        {L"\"a\"=hex:01,\\\r\n\"b\"=\"c\"", L"!3 5|"},
        {L"\"a\"=hex:01,\\", L"V a 3 01|"},
        {L"rubbish\r\n# c\r\n ;c", L"!0 4|"},
        {L"rubbish\rrubbish\nrubbish", L"!0 4|!0 5|!0 6|"},
        {LR"([HKLM\a\\b]c]\ ;])", L"K HKEY_LOCAL_MACHINE\\a\\b]c]\\ ;|"},
        {LR"([hkey_users\a\])", L"K HKEY_USERS\\a|"},
        {L"[-HKCC\\a]\r\n\"v\"=\"1\"", L"-K HKEY_CURRENT_CONFIG\\a|!2 5|"},
        {L"[\\HKCU\\a]\r\n\"v\"=-", L"!1 4|!2 5|"},
        {L"[ HKCU\\a]\r\n\"v\"=-", L"!0 4|-V v|"},
    };
    for (const auto& [line, told] : cases) {
        const std::wstring text = std::wstring(kStart) + line + L"\r\n";
        const std::wstring said = std::wstring(L"K HKEY_CURRENT_USER\\T|") + told;
        for (const std::size_t block : {std::size_t{1}, std::size_t{7}, text.size()})
            EXPECT_EQ(ReadBy(text, block), said) << testing::PrintToString(std::wstring(line));
    }
}

TEST(RegistryFile, AFileCutAnywhereSaysTheStartOfWhatItSays) {
    const std::wstring text = std::wstring(kStart) + L"\"a\"=hex:01,\\\r\n  02\r\n\"b\"=\"text\"\r\n[-HKCU\\T]\r\n";
    const std::wstring whole = ReadBy(text, text.size());
    for (std::size_t length = 38; length < text.size(); ++length) {
        const std::wstring said = ReadBy(text.substr(0, length), 5);
        // The value in which the file is cut counts as far as it goes, as it does for the system.
        std::wstring told = said.substr(0, said.find(L'!'));
        if (!told.empty()) told.pop_back();
        told.resize(told.rfind(L'|') + 1);
        EXPECT_TRUE(whole.starts_with(told)) << length;
    }
    EXPECT_EQ(ReadBy(std::wstring(kStart) + L"\"a\"=\"b", 9), L"K HKEY_CURRENT_USER\\T|!3 4|!6 4|");
    EXPECT_EQ(ReadBy(std::wstring(kStart) + std::wstring(L"\"a\"=\"b\"\0\"c\"=-\n", 14), 9),
              L"K HKEY_CURRENT_USER\\T|V a 1 62000000|!5 4|");
}

TEST(RegistryFile, OnlyTheTwoHeadersAreTakenAndTextsOfVersion4AreInTheCodePage) {
    for (const wchar_t* header : {L"", L"REGEDIT", L"REGEDIT4 ", L"regedit4", L"REGEDIT5", L"\nREGEDIT4",
                                  L"Windows Registry Editor Version 5.01", L"Windows Registry Editor Version 5.00 "}) {
        EXPECT_THROW(ReadBy(std::wstring(header) + L"\r\n", 4), RegistryFileError);
    }
    const wchar_t* const body = L"\r\n[HKCU\\T]\r\n\"a\"=hex(2):61,00\r\n\"b\"=hex:61\r\n\"c\"=\"d\"\r\n";
    const std::wstring key = L"K HKEY_CURRENT_USER\\T|";
    EXPECT_EQ(ReadBy(std::wstring(L" \tREGEDIT4") + body, 9, [](std::string_view bytes) { return Wide(bytes); }),
              key + L"V a 2 61000000|V b 3 61|V c 1 64000000|");
    EXPECT_EQ(ReadBy(std::wstring(L"Windows Registry Editor Version 5.00") + body, 9,
                     [](std::string_view bytes) { return Wide(bytes); }),
              key + L"V a 2 6100|V b 3 61|V c 1 64000000|");
}

TEST(RegistryFile, LinesOfAnyLengthTakeTheMemoryOfTheirValueAndNoMore) {
    std::wstring bytes;
    for (int i = 0; i < 200000; ++i) bytes += L"0a,";
    const std::wstring units(300000, L'x');
    const std::wstring said =
        ReadBy(std::wstring(kStart) + L"\"h\"=hex:" + bytes + L"\r\n\"t\"=\"" + units + L"\"\r\n\"" + units +
                   L"\"=-\r\n" + units + L"\r\n\"" + std::wstring(16384, L'n') + L"\"=-\r\n\"end\"=-\r\n",
               0x8000);
    EXPECT_TRUE(said.starts_with(L"K HKEY_CURRENT_USER\\T|V h 3 0a0a"));
    EXPECT_TRUE(said.ends_with(L"78000000|!4 6|!0 7|!4 8|-V end|"));
    EXPECT_EQ(said.size(), 400000 + 4 * 300000 + 62U);
    Notes notes;
    RegistryFileReader reader(notes);
    reader.Add(std::wstring(kStart) + L"\"t\"=\"");
    const auto addAll = [&] {
        for (int i = 0; i < 112; ++i) reader.Add(units);
    };
    EXPECT_THROW(addAll(), RegistryFileError);
}

TEST(RegistryFile, IsWrittenAsTheSystemsToolDoesAndLosesNothing) {
    std::wstring text;
    RegistryFileWriter writer([&](std::wstring_view block) { text += block; });
    const auto value = [&](const wchar_t* name, std::uint32_t type, std::vector<std::uint8_t> data) {
        writer.Value(name, type, data);
    };
    writer.Key(L"HKEY_CURRENT_USER\\T");
    value(L"", 1, {'a', 0, '"', 0, '\\', 0, '\n', 0, '\r', 0, 0, 0});
    value(L"zero inside", 1, {'a', 0, 0, 0, 'b', 0, 0, 0});
    value(L"no end", 1, {'a', 0});
    value(L"nothing", 1, {});
    value(L"n", 4, {0xAB, 0x12, 0, 0});
    value(L"n3", 4, {1, 2, 3});
    value(L"\"\\\n\r]", 0xFFFFFFFF, {1});
    value(L"23", 3, std::vector<std::uint8_t>(23, 0xFF));
    value(L"24", 3, std::vector<std::uint8_t>(24, 0xFF));
    value(L"z50", 3, std::vector<std::uint8_t>(50, 0));
    writer.ValueRemoval(L"gone");
    writer.KeyRemoval(L"HKEY_CURRENT_USER\\U");
    writer.Finish();
    const auto bytes = [](int count, const wchar_t* byte) {
        std::wstring list;
        for (int i = 0; i < count; ++i) list += byte;
        return list;
    };
    EXPECT_EQ(text, std::wstring(L"\xFEFF") +
                        L"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\T]\r\n"
                        L"@=\"a\\\"\\\\\\n\\r\"\r\n"
                        L"\"zero inside\"=hex(1):61,00,00,00,62,00,00,00\r\n"
                        L"\"no end\"=hex(1):61,00\r\n\"nothing\"=hex(1):\r\n"
                        L"\"n\"=dword:000012ab\r\n\"n3\"=hex(4):01,02,03\r\n"
                        L"\"\\\"\\\\\\n\\r]\"=hex(ffffffff):01\r\n\"23\"=hex:" +
                        bytes(22, L"ff,") + L"ff\r\n\"24\"=hex:" + bytes(23, L"ff,") + L"\\\r\n  ff\r\n\"z50\"=hex:" +
                        bytes(23, L"00,") + L"\\\r\n  " + bytes(25, L"00,") + L"\\\r\n  00,00\r\n\"gone\"=-\r\n" +
                        L"\r\n[-HKEY_CURRENT_USER\\U]\r\n\r\n");
    EXPECT_EQ(writer.Size(), 2 * text.size());
}

}  // namespace

// Hexadecimal text of 16 MB against plain table loops, and the growth of replacing.
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "helpers/Encodings.h"
#include "helpers/TextCompare.h"
#include "support/Ratios.h"

namespace {

constexpr size_t kBytes = 16 << 20;

std::wstring HexBare(const std::vector<BYTE>& bytes) {
    static constexpr wchar_t kDigits[] = L"0123456789abcdef";
    std::wstring text(bytes.size() * 2, L'\0');
    for (size_t i = 0; i < bytes.size(); ++i) {
        text[2 * i] = kDigits[bytes[i] >> 4];
        text[2 * i + 1] = kDigits[bytes[i] & 15];
    }
    return text;
}

std::vector<BYTE> BytesBare(const std::wstring& text) {
    std::array<BYTE, 128> values{};
    for (BYTE digit = 0; digit < 16; ++digit) values[static_cast<size_t>(L"0123456789abcdef"[digit])] = digit;
    std::vector<BYTE> bytes(text.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<BYTE>(values[text[2 * i] & 127] << 4 | values[text[2 * i + 1] & 127]);
    }
    return bytes;
}

// A hundredth of the text's places are hits.
CString TextWithHits(int characters) {
    constexpr int kStep = 100;
    std::wstring text;
    for (int i = 0; i < characters / kStep; ++i) text += L"hit" + std::wstring(kStep - 3, L'.');
    return text.c_str();
}

double SecondsToReplace(int characters) {
    CString text = TextWithHits(characters);
    int count = 0;
    const double seconds = SecondsOf([&] { count = ReplaceText(text, L"HIT", L"longer", 0, true); });
    Require(count == characters / 100 && text.GetLength() == characters + 3 * count && text.Left(7) == L"longer.");
    return seconds;
}

}  // namespace

int wmain() {
    std::vector<BYTE> bytes(kBytes);
    for (size_t i = 0; i < kBytes; ++i) bytes[i] = static_cast<BYTE>(i * 2654435761u >> 13);
    const std::wstring hex = HexBare(bytes);
    const CString ourHex(hex.c_str(), static_cast<int>(hex.size()));

    Ratios ratios;
    ratios.Compare("BytesToHex, 16 MB", 3, Timed([&] {
                       CString text;
                       BytesToHex(bytes, text);
                       Require(text.GetAt(text.GetLength() - 1) == hex.back());
                   }),
                   Timed([&] { Require(HexBare(bytes).back() == hex.back()); }));
    ratios.Compare("HexToBytes, 16 MB", 3, Timed([&] {
                       const auto result = HexToBytes(ourHex);
                       Require(std::memcmp(result.get(), bytes.data(), kBytes) == 0);
                   }),
                   Timed([&] { Require(BytesBare(hex) == bytes); }));
    ratios.Grow("ReplaceText, one hit in 100 characters", kLinear, {250000, 500000, 1000000}, SecondsToReplace);
    ratios.Print();
    return 0;
}

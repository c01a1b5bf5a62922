#include "helpers/HexText.h"

#include <array>
#include <cwchar>

namespace {

constexpr std::uint8_t kNoDigit = 0xff;

constexpr std::array<std::uint8_t, 128> MakeDigitValues() {
    std::array<std::uint8_t, 128> values{};
    values.fill(kNoDigit);
    for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = i;
    for (std::uint8_t i = 0; i < 6; ++i) {
        values['a' + i] = static_cast<std::uint8_t>(10 + i);
        values['A' + i] = static_cast<std::uint8_t>(10 + i);
    }
    return values;
}

constexpr auto kDigitValues = MakeDigitValues();

std::uint8_t DigitValue(wchar_t character) {
    const auto code = static_cast<std::uint32_t>(character);
    return code < kDigitValues.size() ? kDigitValues[code] : kNoDigit;
}

}  // namespace

void WriteHexDigits(std::span<const std::uint8_t> bytes, std::span<wchar_t> digits) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    wchar_t* out = digits.data();
    for (const std::uint8_t byte : bytes) {
        *out++ = kDigits[byte >> 4];
        *out++ = kDigits[byte & 0xf];
    }
}

void ReadHexPairs(std::wstring_view text, std::span<std::uint8_t> bytes) {
    const wchar_t* pair = text.data();
    for (std::uint8_t& byte : bytes) {
        const std::uint8_t high = DigitValue(pair[0]);
        const std::uint8_t low = DigitValue(pair[1]);
        if (high != kNoDigit && low != kNoDigit) {
            byte = static_cast<std::uint8_t>(high << 4 | low);
        } else {
            const wchar_t odd[] = {pair[0], pair[1], L'\0'};
            byte = static_cast<std::uint8_t>(std::wcstol(odd, nullptr, 16));
        }
        pair += 2;
    }
}

#include "helpers/HexText.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::vector<std::uint8_t> Read(std::wstring_view text) {
    std::vector<std::uint8_t> bytes(text.size() / 2);
    ReadHexPairs(text, bytes);
    return bytes;
}

}  // namespace

TEST(WriteHexDigits, TwoLowerCaseDigitsForEachByte) {
    const std::uint8_t bytes[] = {0x00, 0x09, 0x0a, 0x10, 0x7f, 0x80, 0xde, 0xff};
    std::wstring digits(16, L'?');
    WriteHexDigits(bytes, digits);
    EXPECT_EQ(digits, L"00090a107f80deff");
}

TEST(ReadHexPairs, TakesBothCases) {
    EXPECT_EQ(Read(L"00090a107f80deffDEFF"),
              (std::vector<std::uint8_t>{0x00, 0x09, 0x0a, 0x10, 0x7f, 0x80, 0xde, 0xff, 0xde, 0xff}));
    EXPECT_TRUE(Read(L"").empty());
}

TEST(ReadHexPairs, APairThatIsNoNumberReadsAsFarAsItGoes) {
    EXPECT_EQ(Read(L"zzz11z"), (std::vector<std::uint8_t>{0x00, 0x00, 0x01}));
    EXPECT_EQ(Read(L" 1-1+f0x"), (std::vector<std::uint8_t>{0x01, 0xff, 0x0f, 0x00}));
    EXPECT_EQ(Read(std::wstring(L"\0001\x4E2D\xD831", 4)), (std::vector<std::uint8_t>{0x00, 0x00}));
}

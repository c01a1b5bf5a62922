#include "files/JunctionBuffer.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

std::string Text(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
std::wstring Decoded(std::string_view bytes) {
    return Junction::Decode(std::as_bytes(std::span(bytes)));
}

// As a system with both names set writes it, for C:\t: tag and length, offset and bytes of the target and of what is
// shown, the target with a terminator, then "t" to be shown.
const std::string kOfAnotherMaker =
    "\3\0\0\xA0\x20\0\0\0"
    "\0\0\x10\0\x12\0\2\0"
    "\\\0?\0?\0\\\0C\0:\0\\\0t\0\0\0t\0\0\0"s;

std::string Changed(std::size_t at, int value) {
    std::string bytes = kOfAnotherMaker;
    bytes[at] = static_cast<char>(value);
    return bytes;
}

}  // namespace

TEST(JunctionBuffer, IsWrittenByteForByte) {
    const auto bytes = Junction::Encode(L"D:\\\x00e9");
    ASSERT_TRUE(bytes);
    EXPECT_EQ(Text(*bytes),
              "\3\0\0\xA0\x1C\0\0\0"  // 16 bytes of name and 12
              "\0\0\x10\0\x12\0\0\0"
              "\\\0?\0?\0\\\0D\0:\0\\\0\xE9\0\0\0\0\0"s);
    EXPECT_EQ(Text(Junction::EncodeRemoval()), "\3\0\0\xA0"s + std::string(20, '\0'));
    const std::wstring longest((0x4000 - 20) / 2 - 4, L'a');
    EXPECT_EQ(Junction::Encode(longest).value_or(std::vector<std::byte>()).size(), 0x4000U);
    EXPECT_FALSE(Junction::Encode(longest + L'a'));
}

TEST(JunctionBuffer, HostileBytesGiveNoMoreThanTheyHold) {
    const std::string& whole = kOfAnotherMaker;
    const std::tuple<const char*, std::string, std::wstring> rows[] = {
        {"whole", whole, L"C:\\t"},
        {"nothing", "", L""},
        {"half a head", whole.substr(0, 15), L""},
        {"a head alone", whole.substr(0, 16), L""},
        {"half a system's prefix", whole.substr(0, 20), L"\\?"},
        {"no terminator", whole.substr(0, 30), L"C:\\"},
        {"an odd end", whole.substr(0, 31), L"C:\\"},
        {"a length beyond the data", Changed(5, 0xFF), L"C:\\t"},
        {"a target offset beyond the data", Changed(9, 0xFF), L"C:\\t"},
        {"a target length beyond the data", Changed(11, 0xFF), L"C:\\t"},
        {"another kind of link", Changed(0, 0x0C), L""},
        {"no system's prefix", Changed(18, 'x'), L"\\x?\\C:\\t"},
        {"a lone surrogate", Changed(31, 0xD8), L"C:\\\xd874"},
        {"no end", whole.substr(0, 16) + std::string(0xFFF0, 'a'), std::wstring((0x4000 - 16) / 2, L'\x6161')}};
    for (const auto& [name, bytes, target] : rows) EXPECT_EQ(Decoded(bytes), target) << name;
}

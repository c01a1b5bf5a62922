#include "files/JunctionBuffer.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::byte> Bytes(std::initializer_list<int> numbers) {
    std::vector<std::byte> bytes;
    for (const int number : numbers) bytes.push_back(static_cast<std::byte>(number));
    return bytes;
}

// As a system with both names set writes it, for C:\t: the target, a terminator, then "t" to be shown.
const std::vector<std::byte>& OfAnotherMaker() {
    static const auto s_bytes = Bytes({
        0x03, 0, 0,    0xA0,                          // tag
        0x20, 0, 0,    0,                             // data length
        0,    0, 0x10, 0,                             // target: offset, bytes
        0x12, 0, 2,    0,                             // shown: offset, bytes
        '\\', 0, '?',  0,    '?',  0, '\\', 0,        //
        'C',  0, ':',  0,    '\\', 0, 't',  0, 0, 0,  //
        't',  0, 0,    0,
    });
    return s_bytes;
}

std::vector<std::byte> Changed(std::size_t at, int value) {
    auto bytes = OfAnotherMaker();
    bytes[at] = static_cast<std::byte>(value);
    return bytes;
}

}  // namespace

TEST(JunctionBuffer, IsWrittenByteForByte) {
    EXPECT_EQ(Junction::Encode(L"D:\\\x00e9"), Bytes({
                                                   0x03, 0, 0,   0xA0,                    // tag
                                                   28,   0, 0,   0,                       // 16 bytes of name and 12
                                                   0,    0, 16,  0,                       // target: offset, bytes
                                                   18,   0, 0,   0,                       // shown: offset, bytes
                                                   '\\', 0, '?', 0,    '?',  0, '\\', 0,  //
                                                   'D',  0, ':', 0,    '\\', 0, 0xE9, 0,  //
                                                   0,    0, 0,   0,
                                               }));
    EXPECT_EQ(Junction::EncodeRemoval(),
              Bytes({0x03, 0, 0, 0xA0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(JunctionBuffer, TheLongestTargetFillsTheBufferExactly) {
    const std::wstring longest((0x4000 - 20) / 2 - 4, L'a');
    const auto bytes = Junction::Encode(longest);
    ASSERT_TRUE(bytes && bytes->size() == 0x4000u);
    EXPECT_EQ(Junction::Decode(*bytes), longest);
    EXPECT_FALSE(Junction::Encode(longest + L'a'));
}

TEST(JunctionBuffer, HostileBytesGiveNoMoreThanTheyHold) {
    const auto& whole = OfAnotherMaker();
    EXPECT_EQ(Junction::Decode(whole), L"C:\\t");
    struct Case {
        const char* name;
        std::vector<std::byte> bytes;
        std::wstring target;
    };
    const auto cut = [&](std::size_t size) {
        return std::vector(whole.begin(), whole.begin() + static_cast<long>(size));
    };
    const Case cases[] = {
        {"nothing", {}, L""},
        {"half a head", cut(15), L""},
        {"a head alone", cut(16), L""},
        {"half a system's prefix", cut(20), L"\\?"},
        {"no terminator", cut(30), L"C:\\"},
        {"an odd end", cut(31), L"C:\\"},
        {"a length beyond the data", Changed(5, 0xFF), L"C:\\t"},
        {"a target offset beyond the data", Changed(9, 0xFF), L"C:\\t"},
        {"a target length beyond the data", Changed(11, 0xFF), L"C:\\t"},
        {"another kind of link", Changed(0, 0x0C), L""},
        {"no system's prefix", Changed(18, 'x'), L"\\x?\\C:\\t"},
        {"a lone surrogate", Changed(31, 0xD8), L"C:\\\xd874"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Junction::Decode(c.bytes), c.target);
    }
    std::vector<std::byte> endless = cut(16);
    endless.resize(0x10000, std::byte{'a'});
    EXPECT_EQ(Junction::Decode(endless).size(), (0x4000u - 16) / 2);
}

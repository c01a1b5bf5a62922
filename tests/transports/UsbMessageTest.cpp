#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "peers/HexBytes.h"
#include "transports/UsbDecoder.h"
#include "transports/UsbName.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes BytesOf(std::string_view hex) {
    return FromHex<Bytes>(hex);
}

struct Case {
    UsbMessage message;
    const char* head;
    const char* tail = "";
    bool isKnown = true;
};

// Written by hand, each field apart.
const Case kCases[] = {
    {{.command = UsbCmdConnect}, "33120000"},
    {{.command = UsbCmdConnectReply}, "34120000"},
    {{.command = UsbCmdOpenFile, .count = 6}, "35120000 06000000", "6100 5c00 1e04"},
    {{.command = UsbCmdOpenFileReply, .handle = kUsbNoHandle}, "36120000 ffffffffffffffff"},
    {{.command = UsbCmdReadFile, .handle = 0x0102030405060708, .count = 0x100000},
     "37120000 0807060504030201 00001000"},
    {{.command = UsbCmdReadFileReply, .count = 3}, "38120000 03000000", "010203"},
    {{.command = UsbCmdReadFileReply, .count = 0}, "38120000 00000000"},
    {{.command = UsbCmdWriteFile, .handle = 0x54, .count = 2}, "39120000 5400000000000000 02000000", "3312"},
    {{.command = UsbCmdWriteFileReply, .count = 0xfffffffe}, "3a120000 feffffff"},
    {{.command = UsbCmdSeekFile, .handle = 0x54, .position = -2, .method = 2},
     "3b120000 5400000000000000 feffffffffffffff 02000000"},
    {{.command = UsbCmdSeekFileReply, .position = 0x100000000}, "3c120000 0000000001000000"},
    {{.command = UsbCmdCloseFile, .handle = 0x54}, "3d120000 5400000000000000"},
    {{.command = UsbCmdCloseFileReply}, "3e120000"},
    {{.command = UsbCmdDirectoryExists, .count = 2}, "41120000 02000000", "4400"},
    {{.command = UsbCmdDirectoryExistsReply, .count = 1}, "42120000 01000000"},
    {{.command = UsbCmdDriveFreeSpace}, "45120000"},
    {{.command = UsbCmdDriveFreeSpaceReply, .freeBytes = 0x8000000000000001}, "46120000 0100000000000080"},
    {{.command = UsbCmdFinish, .count = 0x142}, "47120000 42010000"},
    {{.command = UsbCmdFinishReply}, "48120000"},
    {{.command = UsbCmdDisconnected}, "49120000"},
    {{.command = UsbCmdResendLast}, "50120000"},
};

// Hands the decoder what it asks for, at most `piece` bytes at a time.
void Feed(UsbDecoder& decoder, std::span<const std::uint8_t>& left, std::size_t piece) {
    while (!decoder.Missing().empty()) {
        const auto missing = decoder.Missing();
        const std::size_t size = std::min({missing.size(), piece, left.size()});
        ASSERT_NE(size, 0U) << "asks for bytes behind the end";
        std::copy_n(left.begin(), size, missing.begin());
        left = left.subspan(size);
        decoder.Took(size);
    }
}

}  // namespace

// Encoded and decoded, in pieces of any size, tails kept or skipped. Of what it does not know it takes the code alone.
TEST(UsbMessage, StandsOnTheWireByteForByte) {
    std::vector<Case> cases(std::begin(kCases), std::end(kCases));
    const std::string longTail(0x3005 * 2, '3');
    cases.push_back({{.command = UsbCmdReadFileReply, .count = 0x3005}, "38120000 05300000", longTail.c_str()});
    for (const char* code : {"3f120000", "40120000", "43120000", "44120000", "4a120000", "4f120000", "32120000",
                             "51120000", "33120001", "00000000", "ffffffff"}) {
        UsbMessage unknown;
        std::memcpy(&unknown.command, BytesOf(code).data(), sizeof(unknown.command));
        cases.push_back({unknown, code, "", false});
    }
    Bytes wire;
    for (const Case& c : cases) {
        EXPECT_EQ(EncodeUsbMessage(c.message), BytesOf(c.head)) << c.head;
        for (const char* part : {c.head, c.tail}) std::ranges::copy(BytesOf(part), std::back_inserter(wire));
    }
    for (const std::size_t piece : {1U, 3U, 700U, 100000U}) {
        for (const bool keep : {true, false}) {
            std::span<const std::uint8_t> left = wire;
            for (const Case& c : cases) {
                UsbDecoder decoder;
                Feed(decoder, left, piece);
                EXPECT_EQ(decoder.IsKnown(), c.isKnown) << c.head;
                EXPECT_EQ(decoder.Message(), c.message) << c.head;
                Bytes tail(decoder.TailBytes());
                keep ? decoder.KeepTail(tail) : decoder.SkipTail();
                Feed(decoder, left, piece);
                EXPECT_EQ(tail, keep ? BytesOf(c.tail) : Bytes(BytesOf(c.tail).size())) << c.head;
            }
            EXPECT_TRUE(left.empty());
        }
    }
}

TEST(UsbMessage, TellsWhatCannotBeTakenIn) {
    // The counts that still fit and the first that does not, where 100 were asked for.
    const struct {
        UsbCommand command;
        std::vector<std::uint32_t> fits, tooMuch;
    } cases[] = {
        {UsbCmdOpenFile, {0, 520}, {522, 5}},       {UsbCmdDirectoryExists, {520}, {521, 0xfffffffe}},
        {UsbCmdReadFile, {64 << 20}, {0xffffffff}}, {UsbCmdWriteFile, {64 << 20}, {(64 << 20) + 1}},
        {UsbCmdReadFileReply, {100}, {101}},        {UsbCmdWriteFileReply, {100}, {101}},
        {UsbCmdFinish, {0xffffffff}, {}},
    };
    for (const auto& c : cases) {
        const auto fits = [&](std::uint32_t count) {
            return UsbMessageFits({.command = c.command, .count = count}, 100);
        };
        EXPECT_TRUE(std::ranges::all_of(c.fits, fits) && std::ranges::none_of(c.tooMuch, fits)) << c.command;
    }
}

TEST(UsbName, LosesItsFirstElementAndTellsWhetherItLeavesTheDirectory) {
    const struct {
        const wchar_t* name;
        const wchar_t* belowTop;
        bool leaves;
    } cases[] = {
        {L"", L"", false},
        {L"a.txt", L"a.txt", false},
        {L"top\\", L"", false},
        {L"Users\\a\\b.txt", L"a\\b.txt", false},
        {L"a..b\\..c\\.d", L"..c\\.d", false},
        {L".\\a", L"a", false},
        {L"a\\..", L"..", false},
        {L"a/../b\\..", L"..", false},
        {L"C:\\Users\\a.txt", L"Users\\a.txt", true},
        {L"C:a", L"C:a", true},
        {L"\\a.txt", L"a.txt", true},
        {L"/a.txt", L"/a.txt", true},
        {L"..", L"..", true},
        {L"..\\a", L"a", true},
        {L"a\\..\\..\\a\\b", L"..\\..\\a\\b", true},
        {L"a/../../b", L"a/../../b", true},
        {L"a\\. \\.. \\...\\b", L". \\.. \\...\\b", true},  // systems differ in what they strip
    };
    for (const auto& c : cases) {
        EXPECT_EQ(UsbNameBelowTop(c.name), c.belowTop) << c.name;
        EXPECT_EQ(UsbNameLeavesDirectory(c.name), c.leaves) << c.name;
    }
}

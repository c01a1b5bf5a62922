#include "crypto/CipherChunks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr int32_t kOther = static_cast<int32_t>(0xC0000206);

struct Row {
    uint32_t length;
    std::vector<std::pair<int32_t, uint32_t>> answers;  // to each call: a status and how much was written
    std::string calls;                                  // the sizes asked for, with a p where padded
    int32_t status;
    uint32_t result;
};

void Expect(const Row& row, bool isEncrypting) {
    SCOPED_TRACE(row.length);
    std::vector<uint8_t> buffer(row.length + 16, 0xEE);
    std::string calls;
    uint8_t call = 0;
    const auto cipher = [&](std::span<uint8_t> chunk, bool isPadded, std::span<uint8_t> output, uint32_t& written) {
        const auto& [status, answered] = row.answers.at(call++);
        calls += std::to_string(chunk.size()) + (isPadded ? "p " : " ");
        written = answered;
        std::fill_n(output.begin(), std::min<size_t>(written, output.size()), call);
        return status;
    };
    uint32_t length = row.length;
    const int32_t status = isEncrypting ? EncryptChunks(buffer.data(), length, cipher)
                                        : DecryptChunks({buffer.data(), length}, length, cipher);
    EXPECT_EQ(status, row.status);
    EXPECT_EQ(length, row.result);
    EXPECT_EQ(calls, row.calls);
    if (status != 0 || length == 0) return;
    EXPECT_EQ(buffer[length - 1], call) << "the last chunk's output is in place";
    EXPECT_EQ(std::count(buffer.begin() + length, buffer.end(), 0xEE), buffer.end() - buffer.begin() - length);
}

}  // namespace

TEST(CipherChunks, DecryptingCutsRetriesAndStops) {
    const Row rows[] = {
        {0, {}, "", 0, 0},
        {16, {{0, 9}}, "16p ", 0, 9},
        {16, {{0, 0}}, "16p ", 0, 0},
        {0x800, {{0, 0x800}}, "2048 ", 0, 0x800},
        {0x810, {{0, 0x800}, {0, 3}}, "2048 16p ", 0, 0x803},
        // A padding that makes no sense: once more without it.
        {32, {{kDataErrorStatus, 0}, {0, 32}}, "32p 32 ", 0, 32},
        {32, {{kDataErrorStatus, 0}, {kOther, 0}}, "32p 32 ", kOther, 32},
        // A full chunk is not tried again, nor is another failure.
        {0x800, {{kDataErrorStatus, 0}}, "2048 ", kDataErrorStatus, 0x800},
        {17, {{kOther, 0}}, "17p ", kOther, 17},
        {0x1010, {{0, 0x800}, {kOther, 0}}, "2048 2048 ", kOther, 0x1010},
        // More than was there to decrypt.
        {16, {{0, 17}}, "16p ", kDataErrorStatus, 16},
        {0x800, {{0, 0x900}}, "2048 ", kDataErrorStatus, 0x800},
    };
    for (const Row& row : rows) Expect(row, false);
}

TEST(CipherChunks, EncryptingGrowsOnlyInAShortLastChunk) {
    const Row rows[] = {
        {0, {}, "", 0, 0},
        {0x7FF, {{0, 0x800}}, "2047p ", 0, 0x800},
        {0x1001, {{0, 0x800}, {0, 0x800}, {0, 16}}, "2048 2048 1p ", 0, 0x1010},
        {0x801, {{0, 0x800}, {kOther, 0}}, "2048 1p ", kOther, 0x801},
        {5, {{0, 0}}, "5p ", kDataErrorStatus, 5},
        {5, {{0, 0x801}}, "5p ", kDataErrorStatus, 5},
    };
    for (const Row& row : rows) Expect(row, true);
}

#include "crypto/CipherChunks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr int32_t kOther = static_cast<int32_t>(0xC0000206);

struct Row {
    bool isEncrypting;
    uint32_t length;
    std::vector<std::pair<int32_t, uint32_t>> answers;  // to each call: a status and how much was written
    const char* calls;                                  // the sizes asked for, with a p where padded
    int32_t status;
    uint32_t result;
};
constexpr bool kDecrypting = false, kEncrypting = true;

const Row kRows[] = {
    {kDecrypting, 0, {}, "", 0, 0},
    {kDecrypting, 16, {{0, 9}}, "16p ", 0, 9},
    {kDecrypting, 16, {{0, 0}}, "16p ", 0, 0},
    {kDecrypting, 0x800, {{0, 0x800}}, "2048 ", 0, 0x800},
    {kDecrypting, 0x810, {{0, 0x800}, {0, 3}}, "2048 16p ", 0, 0x803},
    // A padding that makes no sense: once more without it.
    {kDecrypting, 32, {{kDataErrorStatus, 0}, {0, 32}}, "32p 32 ", 0, 32},
    {kDecrypting, 32, {{kDataErrorStatus, 0}, {kOther, 0}}, "32p 32 ", kOther, 32},
    // A full chunk is not tried again, nor is another failure.
    {kDecrypting, 0x800, {{kDataErrorStatus, 0}}, "2048 ", kDataErrorStatus, 0x800},
    {kDecrypting, 17, {{kOther, 0}}, "17p ", kOther, 17},
    {kDecrypting, 0x1010, {{0, 0x800}, {kOther, 0}}, "2048 2048 ", kOther, 0x1010},
    // More than was there to decrypt.
    {kDecrypting, 16, {{0, 17}}, "16p ", kDataErrorStatus, 16},
    {kDecrypting, 0x800, {{0, 0x900}}, "2048 ", kDataErrorStatus, 0x800},
    // Only a short last chunk grows.
    {kEncrypting, 0, {}, "", 0, 0},
    {kEncrypting, 0x7FF, {{0, 0x800}}, "2047p ", 0, 0x800},
    {kEncrypting, 0x1001, {{0, 0x800}, {0, 0x800}, {0, 16}}, "2048 2048 1p ", 0, 0x1010},
    {kEncrypting, 0x801, {{0, 0x800}, {kOther, 0}}, "2048 1p ", kOther, 0x801},
    {kEncrypting, 5, {{0, 0}}, "5p ", kDataErrorStatus, 5},
    {kEncrypting, 5, {{0, 0x801}}, "5p ", kDataErrorStatus, 5},
};

}  // namespace

TEST(CipherChunks, CutsRetriesGrowsAndStops) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(&row - kRows);
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
        EXPECT_EQ(row.isEncrypting ? EncryptChunks(buffer.data(), length, cipher)
                                   : DecryptChunks({buffer.data(), length}, length, cipher),
                  row.status);
        EXPECT_EQ(std::pair(length, calls), std::pair(row.result, std::string(row.calls)));
        if (row.status != 0 || row.result == 0) continue;
        EXPECT_EQ(buffer[length - 1], call) << "the last chunk's output is in place";
        EXPECT_EQ(std::count(buffer.begin() + length, buffer.end(), 0xEE), buffer.end() - buffer.begin() - length);
    }
}

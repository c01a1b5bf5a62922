#include "crypto/CipherChunks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct Call {
    size_t bytes;
    bool isPadded;
    bool operator==(const Call&) const = default;
};

void PrintTo(const Call& call, std::ostream* out) {
    *out << call.bytes << (call.isPadded ? " padded" : "");
}

struct Answer {
    int32_t status;
    uint32_t written;
};

// Answers each call from a list and writes the call's number to every byte.
class StandIn {
public:
    explicit StandIn(std::vector<Answer> answers) : m_answers(std::move(answers)) {}

    ChunkCipher Cipher() {
        return [this](std::span<uint8_t> chunk, bool isPadded, std::span<uint8_t> output, uint32_t& written) {
            const Answer answer = m_answers.at(calls.size());
            calls.push_back({chunk.size(), isPadded});
            written = answer.written;
            std::fill_n(output.begin(), std::min<size_t>(written, output.size()), static_cast<uint8_t>(calls.size()));
            return answer.status;
        };
    }

    std::vector<Call> calls;

private:
    std::vector<Answer> m_answers;
};

constexpr int32_t kOther = static_cast<int32_t>(0xC0000206);

struct Row {
    uint32_t length;
    std::vector<Answer> answers;
    std::vector<Call> calls;
    int32_t status;
    uint32_t result;
};

int32_t Encrypt(std::span<uint8_t> buffer, uint32_t& length, const ChunkCipher& cipher) {
    return EncryptChunks(buffer.data(), length, cipher);
}

int32_t Decrypt(std::span<uint8_t> buffer, uint32_t& length, const ChunkCipher& cipher) {
    return DecryptChunks(buffer.first(length), length, cipher);
}

void Expect(const Row& row, decltype(&Encrypt) run) {
    SCOPED_TRACE(row.length);
    std::vector<uint8_t> buffer(row.length + 16, 0xEE);
    StandIn standIn(row.answers);
    uint32_t length = row.length;
    EXPECT_EQ(run(buffer, length, standIn.Cipher()), row.status);
    EXPECT_EQ(length, row.result);
    EXPECT_EQ(standIn.calls, row.calls);
    if (row.status != 0 || length == 0) return;
    EXPECT_EQ(buffer[length - 1], row.calls.size()) << "the last chunk's output is in place";
    EXPECT_EQ(std::count(buffer.begin() + length, buffer.end(), 0xEE), buffer.end() - buffer.begin() - length);
}

}  // namespace

TEST(CipherChunks, DecryptingCutsRetriesAndStops) {
    const Row rows[] = {
        {0, {}, {}, 0, 0},
        {16, {{0, 9}}, {{16, true}}, 0, 9},
        {16, {{0, 0}}, {{16, true}}, 0, 0},
        {0x800, {{0, 0x800}}, {{0x800, false}}, 0, 0x800},
        {0x810, {{0, 0x800}, {0, 3}}, {{0x800, false}, {16, true}}, 0, 0x803},
        // A padding that makes no sense: once more without it.
        {32, {{kDataErrorStatus, 0}, {0, 32}}, {{32, true}, {32, false}}, 0, 32},
        {32, {{kDataErrorStatus, 0}, {kOther, 0}}, {{32, true}, {32, false}}, kOther, 32},
        // A full chunk is not tried again, nor is another failure.
        {0x800, {{kDataErrorStatus, 0}}, {{0x800, false}}, kDataErrorStatus, 0x800},
        {17, {{kOther, 0}}, {{17, true}}, kOther, 17},
        {0x1010, {{0, 0x800}, {kOther, 0}}, {{0x800, false}, {0x800, false}}, kOther, 0x1010},
        // More than was there to decrypt.
        {16, {{0, 17}}, {{16, true}}, kDataErrorStatus, 16},
        {0x800, {{0, 0x900}}, {{0x800, false}}, kDataErrorStatus, 0x800},
    };
    for (const Row& row : rows) Expect(row, Decrypt);
}

TEST(CipherChunks, EncryptingGrowsOnlyInAShortLastChunk) {
    const Row rows[] = {
        {0, {}, {}, 0, 0},
        {16, {{0, 32}}, {{16, true}}, 0, 32},
        {0x7FF, {{0, 0x800}}, {{0x7FF, true}}, 0, 0x800},
        {0x1001, {{0, 0x800}, {0, 0x800}, {0, 16}}, {{0x800, false}, {0x800, false}, {1, true}}, 0, 0x1010},
        {0x801, {{0, 0x800}, {kOther, 0}}, {{0x800, false}, {1, true}}, kOther, 0x801},
        {5, {{0, 0}}, {{5, true}}, kDataErrorStatus, 5},
        {5, {{0, 0x801}}, {{5, true}}, kDataErrorStatus, 5},
    };
    for (const Row& row : rows) Expect(row, Encrypt);
}

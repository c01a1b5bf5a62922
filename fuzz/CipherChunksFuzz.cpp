// The input is what a cipher answers, three bytes to a call, and then the buffer.
#include <algorithm>
#include <vector>

#include "crypto/CipherChunks.h"
#include "crypto/Scrambler.h"
#include "fuzz/FuzzInput.h"

namespace {

constexpr std::uint8_t kGuard = 0xA5;

// Statuses and lengths come from the input, lengths also beyond the output.
class HostileCipher {
public:
    explicit HostileCipher(std::span<const std::uint8_t> answers) : m_answers(answers) {}

    std::int32_t operator()(std::span<std::uint8_t> chunk, bool isPadded, std::span<std::uint8_t> output,
                            std::uint32_t& written) {
        Require(!chunk.empty() && chunk.size() <= kCipherChunkBytes && output.size() == kCipherChunkBytes);
        Require(!isPadded || chunk.size() < kCipherChunkBytes);
        std::uint32_t answer = 0;
        for (std::size_t i = 0; i < 3 && !m_answers.empty(); ++i, m_answers = m_answers.subspan(1)) {
            answer = answer << 8 | m_answers[0];
        }
        written = (answer & 0x8000) != 0 ? answer & 0xFFF : static_cast<std::uint32_t>(chunk.size());
        std::fill_n(output.begin(), std::min<std::size_t>(written, output.size()), std::uint8_t{1});
        switch (answer >> 21) {
            case 0:
                return kDataErrorStatus;
            case 1:
                return -1;
            default:
                return 0;
        }
    }

private:
    std::span<const std::uint8_t> m_answers;
};

void CheckDecrypting(std::span<const std::uint8_t> answers, std::vector<std::uint8_t> buffer) {
    const auto size = static_cast<std::uint32_t>(buffer.size());
    std::uint32_t length = size;
    const std::int32_t status = DecryptChunks(buffer, length, HostileCipher(answers));
    Require(status == 0 ? length <= size : length == size);
}

void CheckEncrypting(std::span<const std::uint8_t> answers, std::vector<std::uint8_t> buffer) {
    const auto size = static_cast<std::uint32_t>(buffer.size());
    std::uint32_t length = size;
    // Each call may give up to a chunk, so that much room is the cipher's to use.
    buffer.resize(size + kCipherChunkBytes + 1, kGuard);
    const std::int32_t status = EncryptChunks(buffer.data(), length, HostileCipher(answers));
    Require(status != 0 ? length == size : length < buffer.size());
    Require(buffer.back() == kGuard);
}

void CheckScrambling(const std::vector<std::uint8_t>& buffer) {
    std::vector<std::uint8_t> work = buffer;
    Scramble(work);
    Unscramble(work);
    Require(work == buffer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t answerBytes = std::min<std::size_t>(size, 12);
    const std::span answers(data, answerBytes);
    // Each byte of the rest stands for a few of the buffer, so that short inputs reach several chunks.
    std::vector<std::uint8_t> buffer;
    for (std::size_t i = answerBytes; i < size; ++i) buffer.insert(buffer.end(), 1U + (data[i] & 0x7F) * 8U, data[i]);
    CheckDecrypting(answers, buffer);
    CheckEncrypting(answers, buffer);
    CheckScrambling(buffer);
    return 0;
}

// The input is what a cipher answers, three bytes to a call, and then the buffer.
#include <algorithm>
#include <vector>

#include "crypto/CipherChunks.h"
#include "crypto/Scrambler.h"
#include "fuzz/FuzzInput.h"

namespace {

constexpr std::uint8_t kGuard = 0xA5;
using Bytes = std::vector<std::uint8_t>;

// Statuses and lengths come from the input, lengths also beyond the output.
ChunkCipher HostileCipher(std::span<const std::uint8_t> answers) {
    return [answers](std::span<std::uint8_t> chunk, bool isPadded, std::span<std::uint8_t> output,
                     std::uint32_t& written) mutable {
        Require(!chunk.empty() && chunk.size() <= kCipherChunkBytes && output.size() == kCipherChunkBytes);
        Require(!isPadded || chunk.size() < kCipherChunkBytes);
        std::uint32_t answer = 0;
        for (std::size_t i = 0; i < 3 && !answers.empty(); ++i, answers = answers.subspan(1)) {
            answer = answer << 8 | answers[0];
        }
        written = (answer & 0x8000) != 0 ? answer & 0xFFF : static_cast<std::uint32_t>(chunk.size());
        std::fill_n(output.begin(), std::min<std::size_t>(written, output.size()), std::uint8_t{1});
        return answer >> 21 == 0 ? kDataErrorStatus : answer >> 21 == 1 ? -1 : 0;
    };
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span answers(data, std::min<std::size_t>(size, 12));
    // Each byte of the rest stands for a few of the buffer, so that short inputs reach several chunks.
    Bytes buffer;
    for (std::size_t i = answers.size(); i < size; ++i)
        buffer.insert(buffer.end(), 1U + (data[i] & 0x7F) * 8U, data[i]);
    const auto whole = static_cast<std::uint32_t>(buffer.size());
    Bytes work = buffer;
    auto length = whole;
    const std::int32_t decrypted = DecryptChunks(work, length, HostileCipher(answers));
    Require(decrypted == 0 ? length <= whole : length == whole);
    // Each call of an encryption may give up to a chunk, so that much room is the cipher's to use.
    work = buffer;
    work.resize(whole + kCipherChunkBytes + 1, kGuard);
    length = whole;
    const std::int32_t encrypted = EncryptChunks(work.data(), length, HostileCipher(answers));
    Require((encrypted != 0 ? length == whole : length < work.size()) && work.back() == kGuard);
    work = buffer;
    Scramble(work);
    Unscramble(work);
    Require(work == buffer);
    return 0;
}

#include "crypto/CipherChunks.h"

#include <algorithm>
#include <array>

int32_t EncryptChunks(uint8_t* buffer, uint32_t& length, const ChunkCipher& cipher) {
    std::array<uint8_t, kCipherChunkBytes> work{};
    uint32_t position = 0;
    while (position < length) {
        const uint32_t chunkBytes = std::min(length - position, kCipherChunkBytes);
        uint32_t written = 0;
        const int32_t status = cipher({buffer + position, chunkBytes}, chunkBytes < kCipherChunkBytes, work, written);
        if (status != 0) return status;
        // A cipher that writes nothing would hold the loop for ever.
        if (written == 0 || written > work.size()) return kDataErrorStatus;
        std::copy_n(work.begin(), written, buffer + position);
        position += written;
    }
    length = position;
    return 0;
}

int32_t DecryptChunks(std::span<uint8_t> buffer, uint32_t& length, const ChunkCipher& cipher) {
    std::array<uint8_t, kCipherChunkBytes> work{};
    uint32_t position = 0;
    while (position < buffer.size()) {
        const auto chunk = buffer.subspan(position, std::min<size_t>(buffer.size() - position, kCipherChunkBytes));
        const bool isLast = chunk.size() < kCipherChunkBytes;
        uint32_t written = 0;
        int32_t status = cipher(chunk, isLast, work, written);
        if (status == kDataErrorStatus && isLast) status = cipher(chunk, false, work, written);
        if (status != 0) return status;
        if (written > chunk.size()) return kDataErrorStatus;
        std::copy_n(work.begin(), written, chunk.begin());
        if (isLast) {
            position += written;
            break;
        }
        position += kCipherChunkBytes;
    }
    length = position;
    return 0;
}

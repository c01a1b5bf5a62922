// How a buffer is cut into chunks for a block cipher. Chunks of 0x800 bytes go without padding; a shorter last chunk is
// padded. So a plaintext of a multiple of 0x800 bytes has no padding at all, and one of 0x7F0 to 0x7FF bytes more than
// that comes out as full chunks, whose padding stays in the result of a decryption: the chunks' lengths do not tell it
// from data. Stored data depends on that.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

constexpr uint32_t kCipherChunkBytes = 0x800;

// The status for data that cannot have been encrypted under this key; a padding that makes no sense gives it.
constexpr int32_t kDataErrorStatus = static_cast<int32_t>(0xC000003E);

// One call of the cipher: reads `chunk`, writes at most `output.size()` bytes, tells in `written` how many, and returns
// an NTSTATUS.
using ChunkCipher =
    std::function<int32_t(std::span<uint8_t> chunk, bool isPadded, std::span<uint8_t> output, uint32_t& written)>;

// Encrypts `length` bytes in place and stores the new length, which may be up to 16 bytes more: `buffer` needs that
// room. Ends at the first status that is not 0 and returns it; the length then stays, while earlier chunks are done.
int32_t EncryptChunks(uint8_t* buffer, uint32_t& length, const ChunkCipher& cipher);

// Decrypts in place and stores the new length, which is never more. A last chunk whose padding makes no sense is taken
// as unpadded. Failure as above.
int32_t DecryptChunks(std::span<uint8_t> buffer, uint32_t& length, const ChunkCipher& cipher);

// The input is what a file system answers for a link.
#include "files/JunctionBuffer.h"
#include "fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring target = Junction::Decode(std::as_bytes(std::span(data, size)));
    Require(target.size() * 2 <= size && target.find(L'\0') == std::wstring::npos);
    const auto bytes = Junction::Encode(target);
    if (!bytes) return 0;  // the input had no room for the terminators
    Require(bytes->size() <= Junction::kBufferBytes);
    Require(Junction::Decode(*bytes) == target);
    return 0;
}

// The input is what a peer sends. The first byte says in which pieces it comes and the second how much was asked for.
// The decoder must ask for no byte too many and none too few: as many as make up the message when it is encoded again.
#include <algorithm>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "transports/UsbDecoder.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

struct Stream {
    Bytes left;
    std::size_t piece;

    // False when the stream ends before the decoder is content.
    bool Fill(UsbDecoder& decoder) {
        while (!decoder.Missing().empty() && !left.empty()) {
            const auto missing = decoder.Missing();
            const std::size_t size = std::min({missing.size(), piece, left.size()});
            std::copy_n(left.begin(), size, missing.begin());
            left = left.subspan(size);
            decoder.Took(size);
        }
        return decoder.Missing().empty();
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    Stream stream{Bytes(data, size).subspan(2), data[0] + 1U};
    for (;;) {
        const Bytes message = stream.left;
        UsbDecoder decoder;
        if (!stream.Fill(decoder)) return 0;
        const auto head = EncodeUsbMessage(decoder.Message());
        Require(message.size() - stream.left.size() == head.size());
        Require(std::equal(head.begin(), head.end(), message.begin()));
        std::vector<std::uint8_t> tail;
        if (UsbMessageFits(decoder.Message(), data[1]) && decoder.TailBytes() <= 4096) {
            tail.resize(decoder.TailBytes());
            decoder.KeepTail(tail);
        } else {
            decoder.SkipTail();
        }
        if (!stream.Fill(decoder)) return 0;
        Require(message.size() - stream.left.size() == head.size() + decoder.TailBytes());
        Require(std::equal(tail.begin(), tail.end(), message.subspan(head.size()).begin()));
    }
}

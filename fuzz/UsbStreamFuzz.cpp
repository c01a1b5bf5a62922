// The input is what a peer sends. The first byte says in which pieces it comes and the second how much was asked for.
// The decoder must ask for no byte too many and none too few: as many as make up the message when it is encoded again.
#include <algorithm>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "transports/UsbDecoder.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

class Stream {
public:
    Stream(Bytes bytes, std::size_t piece) : m_left(bytes), m_piece(piece) {}

    // False when the stream ends before the decoder is content.
    bool Fill(UsbDecoder& decoder) {
        while (!decoder.Missing().empty() && !m_left.empty()) {
            const auto missing = decoder.Missing();
            const std::size_t size = std::min({missing.size(), m_piece, m_left.size()});
            std::copy_n(m_left.begin(), size, missing.begin());
            m_left = m_left.subspan(size);
            decoder.Took(size);
        }
        return decoder.Missing().empty();
    }
    Bytes Left() const { return m_left; }

private:
    Bytes m_left;
    std::size_t m_piece;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    Stream stream(Bytes(data, size).subspan(2), data[0] + 1U);
    for (;;) {
        const Bytes message = stream.Left();
        UsbDecoder decoder;
        if (!stream.Fill(decoder)) return 0;
        const auto head = EncodeUsbMessage(decoder.Message());
        Require(message.size() - stream.Left().size() == head.size());
        Require(std::equal(head.begin(), head.end(), message.begin()));
        std::vector<std::uint8_t> tail;
        if (UsbMessageFits(decoder.Message(), data[1]) && decoder.TailBytes() <= 4096) {
            tail.resize(decoder.TailBytes());
            decoder.KeepTail(tail);
        } else {
            decoder.SkipTail();
        }
        if (!stream.Fill(decoder)) return 0;
        Require(message.size() - stream.Left().size() == head.size() + decoder.TailBytes());
        Require(std::equal(tail.begin(), tail.end(), message.subspan(head.size()).begin()));
    }
}

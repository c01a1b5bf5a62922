// The input is what a peer sends. The first byte says in which pieces it comes and the second how much was asked for.
// The decoder must ask for no byte too many and none too few: each message is compared with where a plain reading of
// the stream finds it.
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

std::uint32_t Number(Bytes bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) number |= static_cast<std::uint32_t>(bytes[place + i]) << (8 * i);
    return number;
}

// Bytes of code and fields, by the table of the protocol.
std::size_t HeadBytes(std::uint32_t command) {
    switch (command) {
        case UsbCmdReadFile:
        case UsbCmdWriteFile:
            return 16;
        case UsbCmdSeekFile:
            return 24;
        case UsbCmdOpenFileReply:
        case UsbCmdSeekFileReply:
        case UsbCmdCloseFile:
        case UsbCmdDriveFreeSpaceReply:
            return 12;
        case UsbCmdOpenFile:
        case UsbCmdReadFileReply:
        case UsbCmdWriteFileReply:
        case UsbCmdDirectoryExists:
        case UsbCmdDirectoryExistsReply:
        case UsbCmdFinish:
            return 8;
        default:
            return 4;
    }
}

std::size_t TailBytes(Bytes message) {
    switch (const std::uint32_t command = Number(message, 0)) {
        case UsbCmdOpenFile:
        case UsbCmdReadFileReply:
        case UsbCmdWriteFile:
        case UsbCmdDirectoryExists:
            return Number(message, HeadBytes(command) - 4);
        default:
            return 0;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    Stream stream(Bytes(data, size).subspan(2), data[0] + 1U);
    const std::uint32_t asked = data[1];
    for (;;) {
        const Bytes message = stream.Left();
        UsbDecoder decoder;
        if (!stream.Fill(decoder)) break;
        const std::uint32_t command = decoder.Message().command;
        Require(command == Number(message, 0));
        Require(message.size() - stream.Left().size() == HeadBytes(command));
        Require(decoder.TailBytes() == TailBytes(message));
        const auto encoded = EncodeUsbMessage(decoder.Message());
        Require(std::equal(encoded.begin(), encoded.end(), message.begin()));
        std::vector<std::uint8_t> tail;
        if (UsbMessageFits(decoder.Message(), asked) && decoder.TailBytes() <= 4096) {
            tail.resize(decoder.TailBytes());
            decoder.KeepTail(tail);
        } else {
            decoder.SkipTail();
        }
        if (!stream.Fill(decoder)) break;
        Require(message.size() - stream.Left().size() == HeadBytes(command) + TailBytes(message));
        Require(
            std::equal(tail.begin(), tail.end(), message.begin() + static_cast<std::ptrdiff_t>(HeadBytes(command))));
    }
    return 0;
}

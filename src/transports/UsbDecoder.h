// Takes messages off the stream of bytes that comes over the USB link, in pieces of any size:
//
//     UsbDecoder decoder;                                     // one for each message
//     while (!decoder.Missing().empty()) decoder.Took(Read(decoder.Missing()));
//     if (decoder.TailBytes() != 0) {
//         fits ? decoder.KeepTail(buffer) : decoder.SkipTail();
//         while (!decoder.Missing().empty()) decoder.Took(Read(decoder.Missing()));
//     }
//
// It asks for one field after the other and never for a byte behind the message, so that the stream stays in step
// whatever the message says.
#pragma once

#include <array>

#include "transports/UsbMessage.h"

class UsbDecoder {
public:
    UsbDecoder() = default;
    UsbDecoder(const UsbDecoder&) = delete;
    UsbDecoder& operator=(const UsbDecoder&) = delete;

    // Where the next bytes go: what is missing of the current field, or of the tail once it is said what is to become
    // of it. Empty when the next step is the caller's. Of a tail that is skipped, a piece at a time.
    std::span<std::uint8_t> Missing();
    // So many bytes have come; not more than were missing.
    void Took(std::size_t bytes);

    // The rest is for when all fields have come. A message of unknown code has none, and where it ends nobody knows.
    bool IsKnown() const { return m_shape.isKnown; }
    const UsbMessage& Message() const { return m_message; }
    // The bytes of name or data that follow the fields.
    std::uint32_t TailBytes() const { return m_shape.hasTail ? m_message.count : 0; }
    // One of them once, if there are any: the tail goes to `target`, which has TailBytes(), or nowhere.
    void KeepTail(std::span<std::uint8_t> target) { m_missing = target; }
    void SkipTail();

private:
    void BeginField(std::size_t bytes) { m_missing = std::span(m_field).first(bytes); }
    void EndField();
    void BeginSkippedPiece();

    UsbMessage m_message;
    UsbShape m_shape;
    std::array<std::uint8_t, 8> m_field{};
    std::size_t m_fieldBytes = 4;
    std::size_t m_fieldsDone = 0;  // the code is the first
    bool m_fieldsOver = false;
    std::uint32_t m_toSkip = 0;
    std::array<std::uint8_t, 4096> m_skipped{};
    std::span<std::uint8_t> m_missing = std::span(m_field).first(m_fieldBytes);
};

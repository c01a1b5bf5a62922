#include "transports/UsbDecoder.h"

#include <algorithm>

std::span<std::uint8_t> UsbDecoder::Missing() {
    return m_missing;
}

void UsbDecoder::Took(std::size_t bytes) {
    m_missing = m_missing.subspan(bytes);
    if (!m_missing.empty()) return;
    if (!m_fieldsOver) {
        EndField();
    } else if (m_toSkip != 0) {
        BeginSkippedPiece();
    }
}

void UsbDecoder::SkipTail() {
    m_toSkip = TailBytes();
    BeginSkippedPiece();
}

void UsbDecoder::EndField() {
    if (m_fieldsDone == 0) {
        UsbMessage code;
        DecodeUsbField(UsbField::Count, std::span(m_field).first(m_fieldBytes), code);
        m_message.command = code.count;
        m_shape = UsbShapeOf(m_message.command);
    } else {
        DecodeUsbField(m_shape.fields[m_fieldsDone - 1], std::span(m_field).first(m_fieldBytes), m_message);
    }
    ++m_fieldsDone;
    m_fieldBytes = m_fieldsDone <= std::size(m_shape.fields) ? UsbFieldBytes(m_shape.fields[m_fieldsDone - 1]) : 0;
    m_fieldsOver = m_fieldBytes == 0;
    BeginField(m_fieldBytes);
}

void UsbDecoder::BeginSkippedPiece() {
    const auto piece = std::min<std::size_t>(m_toSkip, m_skipped.size());
    m_toSkip -= static_cast<std::uint32_t>(piece);
    m_missing = std::span(m_skipped).first(piece);
}

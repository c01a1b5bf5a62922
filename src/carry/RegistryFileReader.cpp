// Lines, keys and the names of values; the data are read in RegistryFileData.cpp.
#include "carry/RegistryFileReader.h"

#include <utility>

#include "carry/RegistryFileText.h"

namespace {

// Units up to the first end of line or zero, or all.
std::size_t LineLength(std::wstring_view text) {
    for (std::size_t at = 0;; ++at) {
        // Nearly every unit lies above the three that are looked for.
        while (at < text.size() && text[at] > L'\r') ++at;
        if (at == text.size() || text[at] == L'\r' || text[at] == L'\n' || text[at] == L'\0') return at;
    }
}

}  // namespace

void RegistryFileReader::Add(std::wstring_view block) {
    while (!block.empty() && !m_textEnded) {
        const std::size_t length = LineLength(block);
        const bool isWhole = length < block.size();
        if (m_partial.empty() && isWhole) {
            Take(block.substr(0, length), true);
        } else {
            m_partial += block.substr(0, length);
            m_lastEnd = L'\0';
            if (!isWhole && m_partial.size() <= kLongestLine) return;
            Take(std::exchange(m_partial, {}), isWhole);
        }
        if (!isWhole) return;
        const wchar_t end = block[length];
        block.remove_prefix(length + 1);
        if (end == L'\0') {
            m_textEnded = true;
            m_sink.OnSkipped(SkippedLine::TextEnds);
        } else if (end != L'\n' || m_lastEnd != L'\r' || length != 0) {
            ++m_line;
        }
        m_lastEnd = end;
    }
}

void RegistryFileReader::Finish() {
    if (!m_partial.empty()) {
        Take(std::exchange(m_partial, {}), true);
        m_sink.OnSkipped(SkippedLine::NoLineEnd);
    }
    if (m_state == State::Header) ReadHeader({});
    if (m_state == State::HexLine) Deliver();
}

// Reads a line or, of a long one, the next piece. What cannot be read without what follows stays for the next time.
void RegistryFileReader::Take(std::wstring_view piece, bool isWhole) {
    const std::size_t read = Read(piece, isWhole);
    if (isWhole) {
        EndLine();
    } else if (read == 0) {
        Skip(piece, m_state == State::Line ? SkippedLine::NameTooLong : SkippedLine::BrokenValue);
    } else {
        m_partial = piece.substr(read);
    }
}

std::size_t RegistryFileReader::Read(std::wstring_view piece, bool isWhole) {
    switch (m_state) {
        case State::Header:
            ReadHeader(piece);
            return piece.size();
        case State::Line:
            return ReadLine(piece, isWhole);
        case State::Text:
            return ReadText(piece, 0, isWhole);
        case State::AfterData:
            return ExpectEnd(piece, 0);
        case State::Hex:
            return ReadHex(piece, 0, isWhole);
        case State::HexLine:
            return ReadHexLine(piece, isWhole);
        case State::Rest:
            break;
    }
    return piece.size();
}

void RegistryFileReader::EndLine() {
    if (m_state == State::Text) Skip({}, SkippedLine::BrokenValue);
    if (m_state == State::AfterData || m_state == State::Hex) Deliver();
    if (m_state != State::HexLine) m_state = std::exchange(m_goesOn, false) ? State::HexLine : State::Line;
}

void RegistryFileReader::ReadHeader(std::wstring_view line) {
    const std::wstring_view header = line.substr(SkipBlanks(line, 0));
    m_isVersion4 = header == kRegistryFileHeader4;
    if (!m_isVersion4 && header != kRegistryFileHeader) {
        throw RegistryFileError(m_line, "this is no registry file of version 5.00 or 4");
    }
    m_state = State::Rest;
}

std::size_t RegistryFileReader::ReadLine(std::wstring_view piece, bool isWhole) {
    const std::size_t at = SkipBlanks(piece, 0);
    if (at == piece.size()) return at;
    switch (piece[at]) {
        case L';':
        case L'#':
            m_state = State::Rest;
            return piece.size();
        case L'[':
            if (!isWhole) return 0;
            ReadKey(piece.substr(at + 1));
            return piece.size();
        case L'@':
        case L'"':
            return ReadValue(piece, at, isWhole);
        default:
            return Skip(piece, SkippedLine::NotUnderstood);
    }
}

// The line behind its opening bracket. One that is no key leaves the key that was open.
void RegistryFileReader::ReadKey(std::wstring_view line) {
    const std::size_t end = line.rfind(L']');
    if (end == line.npos || SkipBlanks(line, 0) != 0) {
        Skip(line, SkippedLine::NotUnderstood);
        return;
    }
    const bool isRemoval = line[0] == L'-';
    const auto key = ParseKeyName(line.substr(isRemoval ? 1 : 0, end - (isRemoval ? 1 : 0)));
    m_hasKey = key && !isRemoval;
    if (!key) {
        Skip(line, SkippedLine::UnknownHive);
    } else if (isRemoval) {
        m_sink.OnKeyRemoval(*key);
    } else {
        m_sink.OnKey(*key);
    }
}

std::size_t RegistryFileReader::ReadValue(std::wstring_view piece, std::size_t at, bool isWhole) {
    const bool isNamed = piece[at++] == L'"';
    m_name.clear();
    const bool isComplete = !isNamed || ReadQuoted(piece, at, m_name);
    if (!isComplete && !isWhole) return 0;
    at = SkipBlanks(piece, at);
    if (!isComplete || at == piece.size() || piece[at] != L'=') return Skip(piece, SkippedLine::NotUnderstood);
    if (m_name.size() > kLongestValueName) return Skip(piece, SkippedLine::NameTooLong);
    m_data.clear();
    m_isHex = false;
    return ReadData(piece, SkipBlanks(piece, at + 1), isWhole);
}

std::size_t RegistryFileReader::Skip(std::wstring_view piece, SkippedLine reason) {
    m_sink.OnSkipped(reason);
    m_state = State::Rest;
    m_goesOn = false;
    return piece.size();
}

// Reads the text of a registry file (.reg) and says what it tells to do, one instruction after the other:
//
//     RegistryFileReader reader(sink);
//     while (NextBlock(block)) reader.Add(block);
//     reader.Finish();
//
// The text arrives in blocks of UTF-16 units that are cut anywhere. What is kept of it does not grow with the file: a
// line of names up to kLongestLine, and the data of one value up to kLargestValue.
//
// The grammar is that of the system's own importer. What that passes over in silence is passed over here as well, and
// told to the sink with its line.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "carry/KeyName.h"

// Why a line did nothing.
enum class SkippedLine {
    NotUnderstood,  // neither a key nor a value
    UnknownHive,    // a key below none of the five hives
    NoKey,          // a value where no key is open
    BrokenValue,    // a value whose data are not of the format; lines that continue it are part of it
    NameTooLong,    // a key's line of more than kLongestLine, or a value's name of more than kLongestValueName
    TextEnds,       // a zero character: what follows it is not read
    NoLineEnd,      // the last line has no end, as if the file had been cut; what it says counts all the same
};

class RegistryFileSink {
public:
    // Values up to the next key belong to the key, which is created.
    virtual void OnKey(const KeyName& key) = 0;
    virtual void OnKeyRemoval(const KeyName& key) = 0;
    // An empty name is the key's default value. Two bytes 0xFF stand behind the data: the system looks there for the
    // terminator of a text that lacks it.
    virtual void OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) = 0;
    virtual void OnValueRemoval(std::wstring_view name) = 0;
    virtual void OnSkipped(SkippedLine reason) = 0;

protected:
    ~RegistryFileSink() = default;
};

// A text that is no registry file of version 5.00 or 4, or that holds a value of more than kLargestValue bytes.
class RegistryFileError : public std::runtime_error {
public:
    RegistryFileError(std::uint64_t line, const std::string& reason) : std::runtime_error(reason), m_line(line) {}
    std::uint64_t Line() const { return m_line; }  // from 1

private:
    std::uint64_t m_line;
};

class RegistryFileReader {
public:
    static constexpr std::size_t kLongestLine = 0x10000;      // units
    static constexpr std::size_t kLongestValueName = 16383;   // units
    static constexpr std::size_t kLargestValue = 64U << 20U;  // bytes

    // How bytes of the code page become text: the texts that a file of version 4 writes as bytes are in it. Null for a
    // file in UTF-16, whose bytes are taken as they are.
    using FromAnsi = std::wstring (*)(std::string_view bytes);

    explicit RegistryFileReader(RegistryFileSink& sink, FromAnsi fromAnsi = nullptr)
        : m_sink(sink), m_fromAnsi(fromAnsi) {}

    // Both throw RegistryFileError, and pass on what the sink throws; the reader is of no use then.
    void Add(std::wstring_view block);
    void Finish();

    // The number of the line that is being read, from 1. CR LF is one end of line, and so is any other CR or LF.
    std::uint64_t Line() const { return m_line; }

private:
    // What the next unit belongs to. Text to Hex are inside of a value's data.
    enum class State { Header, Line, Text, AfterData, Hex, HexLine, Rest };

    void Take(std::wstring_view piece, bool isWhole);
    std::size_t Read(std::wstring_view piece, bool isWhole);
    void EndLine();
    void ReadHeader(std::wstring_view line);
    std::size_t ReadLine(std::wstring_view piece, bool isWhole);
    void ReadKey(std::wstring_view line);
    std::size_t ReadValue(std::wstring_view piece, std::size_t at, bool isWhole);
    std::size_t ReadData(std::wstring_view piece, std::size_t at, bool isWhole);
    std::size_t ReadNumber(std::wstring_view piece, std::size_t at);
    std::size_t ReadText(std::wstring_view piece, std::size_t at, bool isWhole);
    std::size_t ReadHex(std::wstring_view piece, std::size_t at, bool isWhole);
    std::size_t ReadHexLine(std::wstring_view piece, bool isWhole);
    std::size_t ExpectEnd(std::wstring_view piece, std::size_t at);

    void Append(std::wstring_view text);
    void Deliver();
    std::size_t Skip(std::wstring_view piece, SkippedLine reason);

    RegistryFileSink& m_sink;
    FromAnsi m_fromAnsi;
    State m_state = State::Header;
    std::wstring m_partial;  // what has arrived of a line and is not read yet
    std::uint64_t m_line = 1;
    wchar_t m_lastEnd = 0;
    bool m_textEnded = false;
    bool m_isVersion4 = false;
    bool m_hasKey = false;
    bool m_goesOn = false;  // the value, on the next line
    bool m_isHex = false;   // the value is written as bytes
    std::wstring m_name;
    std::uint32_t m_type = 0;
    std::vector<std::uint8_t> m_data;
};

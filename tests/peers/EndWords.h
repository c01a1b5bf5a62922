// What both sides of an end's control connection agree on.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using Words = std::vector<std::string>;

// Words with tabs between them.
inline Words SplitWords(const std::string& line) {
    Words words;
    for (size_t start = 0; start <= line.size();) {
        const size_t end = std::min(line.find('\t', start), line.size());
        words.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

// Data that shows where a byte stood and which of several pieces it comes from.
inline void FillPattern(std::span<unsigned char> data, unsigned seed, size_t offset = 0) {
    for (size_t i = 0; i < data.size(); ++i) {
        const size_t place = offset + i;
        data[i] = static_cast<unsigned char>(place * 31 + (place >> 8) * 7 + (place >> 16) + seed);
    }
}

// FNV-1a; goes on from what the bytes before gave.
inline std::uint64_t HashOf(std::span<const unsigned char> data, std::uint64_t hash = 0xcbf29ce484222325) {
    for (const unsigned char byte : data) hash = (hash ^ byte) * 0x100000001b3;
    return hash;
}

#include "Printable.h"

#include <cstdio>

std::string Printable(const std::string& text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned>(static_cast<unsigned char>(text[index])); };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Those from U+0080 on are the byte 0xC2 and the code.
        const bool isHighControl = byte(i) == 0xC2 && byte(i + 1) < 0xA0;
        if (byte(i) >= 0x20 && byte(i) != 0x7F && !isHighControl) {
            result += text[i];
            continue;
        }
        if (isHighControl) ++i;
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\x%02X", byte(i));
        result += escaped;
    }
    return result;
}

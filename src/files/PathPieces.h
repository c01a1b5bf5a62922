// A text that is made of pieces of other texts. Path operations answer with it, so that whoever wants the whole text
// allocates it once, at its final size.
#pragma once

#include <array>
#include <string>
#include <string_view>

struct PathPieces {
    std::array<std::wstring_view, 3> parts;  // in order; they point into the texts that they were made from

    std::size_t size() const { return parts[0].size() + parts[1].size() + parts[2].size(); }

    // Room for size() characters, which are not terminated.
    void CopyTo(wchar_t* target) const {
        for (const auto part : parts) target += part.copy(target, part.size());
    }

    std::wstring Joined() const {
        std::wstring text(size(), L'\0');
        CopyTo(text.data());
        return text;
    }
};

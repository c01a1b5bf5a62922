#include "helpers/DottedText.h"

std::vector<std::wstring_view> SplitAtDots(std::wstring_view text) {
    std::vector<std::wstring_view> pieces;
    for (auto dot = text.find(L'.'); dot != std::wstring_view::npos; dot = text.find(L'.')) {
        pieces.push_back(text.substr(0, dot));
        text.remove_prefix(dot + 1);
    }
    pieces.push_back(text);
    return pieces;
}

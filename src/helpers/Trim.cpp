#include "helpers/Trim.h"

std::wstring_view TrimBlanks(std::wstring_view text) {
    const auto first = text.find_first_not_of(L' ');
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

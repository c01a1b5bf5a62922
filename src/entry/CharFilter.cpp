#include "entry/CharFilter.h"

namespace {

constexpr std::wstring_view kEditControls = L"\x03\x08\x16\x18";

}  // namespace

bool MayTypeCharacter(wchar_t character, std::wstring_view validChars) {
    return validChars.empty() || validChars.find(character) != validChars.npos ||
           kEditControls.find(character) != kEditControls.npos;
}

#include "transports/UsbName.h"

#include <algorithm>

namespace {

constexpr std::wstring_view kSlashes = L"\\/";

}  // namespace

std::wstring_view UsbNameBelowTop(std::wstring_view name) {
    // npos and one is 0: without a backslash the whole name stays.
    return name.substr(name.find(L'\\') + 1);
}

bool UsbNameHasDrive(std::wstring_view name) {
    return name.size() > 1 && name[1] == L':';
}

bool UsbNameLeavesDirectory(std::wstring_view name) {
    if (UsbNameHasDrive(name) || name.find_first_of(kSlashes) == 0) return true;
    for (int depth = 0; !name.empty();) {
        const std::wstring_view element = name.substr(0, name.find_first_of(kSlashes));
        if (element.find_first_not_of(L". ") != std::wstring_view::npos) {
            ++depth;
        } else if (std::count(element.begin(), element.end(), L'.') > 1) {
            --depth;
        }
        if (depth < 0) return true;
        name.remove_prefix(std::min(element.size() + 1, name.size()));
    }
    return false;
}

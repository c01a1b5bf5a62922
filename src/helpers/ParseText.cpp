#include "helpers/ParseText.h"

#include <string_view>

#include "helpers/DottedText.h"
#include "helpers/NumberText.h"

int SplitDotted(const CString& text, CStringList& pieces) {
    pieces.RemoveAll();
    const std::wstring_view view(text, static_cast<size_t>(text.GetLength()));
    for (const std::wstring_view piece : SplitAtDots(view)) {
        pieces.AddTail(CString(piece.data(), static_cast<int>(piece.size())));
    }
    return static_cast<int>(pieces.GetCount());
}

bool ParseIntInRange(LPCWSTR text, int min, int max) {
    if (!text || !*text) return false;
    if (min > max) AfxThrowInvalidArgException();
    return IsIntInRange(text, min, max);
}

#include "helpers/MeasureText.h"

#include <algorithm>

CSize MeasureText(CDC* dc, const CString* text, CSize minimum) {
    if (dc == nullptr || text == nullptr) return {0, 0};
    SIZE extent{};
    ::GetTextExtentPoint32W(dc->m_hAttribDC, text->GetString(), text->GetLength(), &extent);
    return {std::max(extent.cx, minimum.cx), std::max(extent.cy, minimum.cy)};
}

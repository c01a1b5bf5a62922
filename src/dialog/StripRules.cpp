#include "dialog/StripRules.h"

#include "dialog/RowRules.h"
#include "helpers/Trim.h"

bool IsStripAtRest(std::wstring_view keyText, std::wstring_view watermark) {
    return keyText.empty() || keyText == watermark;
}

int KindIndexForValue(std::wstring_view valueText, int savedIndex) {
    return TrimBlanks(valueText).empty() ? savedIndex : valueIndex;
}

bool IsRememberedKind(int selectedIndex) {
    return selectedIndex == branchIndex || selectedIndex == keyIndex;
}

StripReturn DecideStripReturn(StripFocus focus, std::wstring_view keyText, std::wstring_view watermark) {
    const bool atRest = IsStripAtRest(keyText, watermark);
    switch (focus) {
        case StripFocus::KeyBox:
            return {.commit = !atRest};
        case StripFocus::ValueBox:
            return {.focusKeyBox = true, .clearKeyBox = atRest, .commit = !atRest};
        case StripFocus::Elsewhere:
            break;
    }
    return {.commit = true};
}

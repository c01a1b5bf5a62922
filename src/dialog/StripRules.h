// What the new-rule strip makes of its texts.
#pragma once

#include <string_view>

// The key box says nothing yet: it is empty or holds the watermark, compared exactly.
bool IsStripAtRest(std::wstring_view keyText, std::wstring_view watermark);

// The kind to select after typing in the value box: "Value" for a name, else the last "Branch" or "Key".
int KindIndexForValue(std::wstring_view valueText, int savedIndex);

// The choice in the kind box that is remembered: "Branch" or "Key", never "Value" and never none.
bool IsRememberedKind(int selectedIndex);

enum class StripFocus { KeyBox, ValueBox, Elsewhere };

// What Return does. `keyText` is trimmed of blanks.
struct StripReturn {
    bool focusKeyBox = false;
    bool clearKeyBox = false;  // makes room for a key to be typed, the value stays
    bool commit = false;
};
StripReturn DecideStripReturn(StripFocus focus, std::wstring_view keyText, std::wstring_view watermark);

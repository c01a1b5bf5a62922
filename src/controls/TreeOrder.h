// What the registry tree's items are and in which order siblings stand.
#pragma once

#include <string_view>

enum class TreeItemKind : int { Key = 0, Value = 1 };

// Below 0, 0 or above 0 as the first sibling stands above, with or below the second: keys above values, and within each
// group by code unit, so that capitals come before small letters.
int CompareSiblings(TreeItemKind kind1, std::wstring_view text1, TreeItemKind kind2, std::wstring_view text2);

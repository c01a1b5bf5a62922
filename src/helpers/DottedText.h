// Texts made of pieces with dots between them, such as version numbers.
#pragma once

#include <string_view>
#include <vector>

// The pieces between the dots, in order; views into `text`. Empty pieces are kept, so there is always one piece more
// than there are dots: "1.2." has three pieces, the empty text has one.
std::vector<std::wstring_view> SplitAtDots(std::wstring_view text);

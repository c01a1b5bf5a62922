// Text for failure messages.
#pragma once

#include <string>
#include <string_view>

// The text in UTF-8.
std::string Narrow(std::wstring_view text);

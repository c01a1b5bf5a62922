// Text for a terminal.
#pragma once

#include <string>

// The UTF-8 text with what a terminal obeys escaped, as "\x1B": U+0000 to U+001F and U+007F to U+009F.
std::string Printable(const std::string& text);

// What the program prints.
#pragma once

#include <string>

// Text in UTF-8: wide on a console, whatever its code page is, and as it stands into a file or pipe.
void PrintOutput(const std::string& text);
void PrintError(const std::string& text);
// "RulesHost: TEXT" and an end of line, to standard error.
void PrintFailure(const std::string& text);

bool IsErrorConsole();

// The host: rules from a file, through the dialog, and back into the file.
#pragma once

#include <string>
#include <vector>

// What a run of the program ends with.
inline constexpr int HOST_EXIT_OK = 0;
inline constexpr int HOST_EXIT_FAILURE = 1;       // wrong arguments, or a file that cannot be read or written
inline constexpr int HOST_EXIT_INVALID_FILE = 2;  // a file that is not a rules file; it is left as it was

// Runs the program with its arguments (without the program's name) and returns its exit code. Tables go to standard
// output, one line per failure to standard error, both as UTF-8.
int RunHost(const std::vector<std::wstring>& arguments);

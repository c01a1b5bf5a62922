// The host: rules from a file, through the dialog, and back into the file.
#pragma once

#include <string>
#include <vector>

#include "ExitCode.h"

// Runs the program with its arguments (without the program's name). Tables go to standard output, one line per failure
// to standard error, both as UTF-8.
ExitCode RunHost(const std::vector<std::wstring>& arguments);

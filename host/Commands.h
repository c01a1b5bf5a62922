// The commands that carry out what rules say, without the dialog.
#pragma once

#include "CommandLine.h"
#include "ExitCode.h"

// Results go to standard output, one line for each thing that is told to standard error.
ExitCode RunCommand(const CommandLine& line);

// The rules dialog, worked by real mouse and keyboard input as an administrator would, and looked at after each step.
#pragma once

#include <string>
#include <vector>

struct DialogStep {
    const char* what;
    std::string seen;
    std::string expected;
};

// Shows the dialog with one rule for some ten seconds, in which nobody else may touch mouse and keyboard. Changes
// nothing but the place of the mouse, which it puts back. In the order of the steps; the dialog is closed in any case.
std::vector<DialogStep> WorkDialog();

// What a run of the program ends with.
#pragma once

enum class ExitCode {
    Done = 0,
    Failed = 1,        // wrong arguments, a file or user that is not to be had, or rules that could be saved nowhere
    InvalidFile = 2,   // a file that is not a rules file or registry file; it is left as it was
    NotInPlace = 3,    // the edited rules are not in their file but in another one, which is told
    Told = 4,          // done, but for what is told
    Refused = 5,       // not done without --force
    TakenBack = 6,     // failed or cancelled; the registry is as it was
    NotTakenBack = 7,  // failed; the undo file tells how it was
};

// What a run of the program ends with.
#pragma once

enum class ExitCode {
    Done = 0,
    Failed = 1,       // wrong arguments, a file that cannot be read, or rules that could be saved nowhere
    InvalidFile = 2,  // a file that is not a rules file; it is left as it was
    NotInPlace = 3,   // the edited rules are not in their file but in another one, which is told
};

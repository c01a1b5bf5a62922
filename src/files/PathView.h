// Between the string class and what path decisions work on and answer with.
#pragma once

#include "files/PathPieces.h"
#include "helpers/TextView.h"

inline CString TextOf(const PathPieces& pieces) {
    CString text;
    pieces.CopyTo(text.GetBufferSetLength(static_cast<int>(pieces.size())));
    return text;
}

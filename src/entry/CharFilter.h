// Which characters may be typed into a cell.
#pragma once

#include <string_view>

// Whether the character may go to the edit: it is one of `validChars`, or these are empty, or it is one of the controls
// by which the edit copies, deletes, pastes and cuts (Ctrl+C, Backspace, Ctrl+V, Ctrl+X).
bool MayTypeCharacter(wchar_t character, std::wstring_view validChars);
